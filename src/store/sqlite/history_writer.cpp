#include "store/sqlite/history_writer.h"

#include "store/sqlite/sqlite_database.h"

#include <algorithm>
#include <chrono>

namespace quorlo {

Status HistoryWriter::note(Entity entity, std::int64_t row, std::string_view identity,
                           HistoryChange::Kind kind, std::string_view properties) {
  if (transaction_ == 0) {
    if (auto status = begin(); !status) return status;
  }
  return database_
      .prepare(
          "INSERT INTO HistoryChange(transactionNumber, entity, row, uuid, kind, changedProperties) "
          "VALUES(?, ?, ?, ?, ?, ?)")
      .bind(1, transaction_)
      .bind(2, entityName(entity))
      .bind(3, row)
      .bind(4, identity)
      .bind(5, static_cast<int>(kind))
      .bind(6, properties)
      .run();
}

// Later than the transaction before it, whatever the clock does.
Status HistoryWriter::begin() {
  using std::chrono::microseconds;
  const auto newest = database_.integer("SELECT coalesce(max(timestamp), 0) FROM HistoryTransaction");
  if (!newest) return newest.error();
  const auto clock = std::chrono::floor<microseconds>(now_.time_since_epoch()).count();
  auto status = database_
                    .prepare(
                        "INSERT INTO HistoryTransaction(timestamp, author, contextName, session) "
                        "VALUES(?, ?, ?, ?)")
                    .bind(1, std::max<std::int64_t>(clock, newest.value() + 1))
                    .bind(2, std::string_view(writer_.author))
                    .bind(3, std::string_view(writer_.contextName))
                    .bind(4, std::string_view(writer_.session))
                    .run();
  transaction_ = database_.lastInsertRowNumber();
  return status;
}

}  // namespace quorlo
