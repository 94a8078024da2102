#include "store/history/history_purge.h"

#include "store/sqlite/sqlite_database.h"

namespace quorlo {

Status purgeHistory(SqliteDatabase& database, Date through) {
  return database
      .prepare(
          "DELETE FROM HistoryTransaction WHERE timestamp <= ?1 "
          "AND number < (SELECT max(number) FROM HistoryTransaction)")
      .bind(1, through)
      .run();
}

}  // namespace quorlo
