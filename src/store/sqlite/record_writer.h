#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/change_log.h"

#include <string>

namespace quorlo {

class SqliteDatabase;

// Who saves.
struct Writer {
  std::string author;
  std::string contextName;
};

// Writes the changes, and what the history says of them, in one transaction: of changed records only the
// changed properties, so that other processes' changes of others stay. A changed record that others have
// deleted is stored again, all of it. Inserted records get their rows. After an error nothing is written and
// no record is touched.
Status writeRecords(SqliteDatabase& database, const ChangeSet& changes, const Writer& writer, Date now);

}  // namespace quorlo
