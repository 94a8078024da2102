#pragma once

#include "base/result.h"

#include <functional>

namespace quorlo {

class SqliteDatabase;

// Copies a database as it is at one moment over the contents of another, in portions, while others read and
// write it. Both connections belong to the calling thread; neither may be in a transaction.
class OnlineCopy {
 public:
  // `mayGoOn` is asked between two portions; where it says no, the outcome is an error and the destination
  // is worth nothing, as after any other failure.
  static Status run(SqliteDatabase& from, SqliteDatabase& to, const std::function<bool()>& mayGoOn);
};

}  // namespace quorlo
