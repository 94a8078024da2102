#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/context/record_store.h"
#include "store/history/history_transaction.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quorlo {

class SqliteDatabase;

// Writes what one save does into the history, within its transaction. A save that notes nothing leaves none.
class HistoryWriter {
 public:
  HistoryWriter(SqliteDatabase& database, const Writer& writer, Date now)
      : database_(database), writer_(writer), now_(now) {}

  // `identity` is the record's uuid or what stands for it, `properties` the names of those that changed.
  Status note(Entity entity, std::int64_t row, std::string_view identity, HistoryChange::Kind kind,
              std::string_view properties);

 private:
  Status begin();

  SqliteDatabase& database_;
  const Writer& writer_;
  const Date now_;
  std::int64_t transaction_ = 0;
};

}  // namespace quorlo
