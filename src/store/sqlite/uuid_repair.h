#pragma once

#include "base/result.h"

namespace quorlo {

class SqliteDatabase;

// Makes the uuids of snippets and folders unique, within the transaction under way. Of records with one uuid
// the oldest keeps it. Folders of one type and uuid are one folder, whose snippets the oldest takes over.
// Every other record, and one with an empty uuid, gets a uuid made of its contents: copies of one library get
// the same ones.
Status repairUuids(SqliteDatabase& database);

}  // namespace quorlo
