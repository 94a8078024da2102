#pragma once

#include "base/date.h"
#include "base/result.h"

namespace quorlo {

class SqliteDatabase;

// Deletes the transactions up to and including the moment, but never the newest of all: the timestamp of
// the next save must come after it.
Status purgeHistory(SqliteDatabase& database, Date through);

}  // namespace quorlo
