#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/history/history_transaction.h"

#include <string>
#include <vector>

namespace quorlo {

class SqliteDatabase;

// One read of the history: what others have saved after a moment. On the thread of the connection.
struct PersistentHistoryFetcher {
  SqliteDatabase& context;
  Date fromDate;
  // Left out is every transaction of this author and every one of this context name, unless it is of another
  // session and after `loaded`: then another process saved it, and it was not read with the library.
  std::string author;
  std::string contextName;
  std::string session = {};
  Date loaded = Date::min();

  // In the order in which they were saved. Changes of entities that this version does not know are left
  // out. Fails when the history cannot be read.
  Result<std::vector<HistoryTransaction>> fetch() const;
};

}  // namespace quorlo
