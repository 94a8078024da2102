#include "store/sqlite/trash_purge.h"

#include "base/log.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/history_writer.h"
#include "store/sqlite/sqlite_database.h"

#include <chrono>

namespace quorlo {
namespace {

// After a longer pause the trash is emptied at the start after the next use.
constexpr std::chrono::days kLongestPause(60);

// This session's own saves bear the same clock.
Result<bool> clockIsFarAhead(SqliteDatabase& database, const Writer& writer, Date now) {
  auto newest = database.prepare("SELECT max(timestamp) FROM HistoryTransaction WHERE session <> ?");
  const auto row = newest.bind(1, std::string_view(writer.session)).step();
  if (!row) return row.error();
  const auto date = newest.date(0);
  return date && now - *date > kLongestPause;
}

}  // namespace

Result<std::vector<std::shared_ptr<QLSnippet>>> purgeTrash(
    SqliteDatabase& database, std::span<const std::shared_ptr<QLSnippet>> trashed, Date limit,
    const Writer& writer, Date now) {
  std::vector<std::shared_ptr<QLSnippet>> purged;
  const auto isFarAhead = clockIsFarAhead(database, writer, now);
  if (!isFarAhead) return isFarAhead.error();
  if (isFarAhead.value()) {
    logWarning("WARNING: #cLk4Hd; The clock is far ahead of the library's last change. The trash is kept.");
    return purged;
  }
  HistoryWriter history(database, writer, now);
  for (const auto& each : trashed) {
    auto remove = database.prepare("DELETE FROM Snippet WHERE row = ? AND deletionDate <= ?");
    if (auto status = remove.bind(1, each->rowNumber()).bind(2, limit).run(); !status) return status.error();
    if (database.changedRowCount() == 0) continue;
    auto status =
        history.note(Entity::snippet, each->rowNumber(), each->uuid(), HistoryChange::Kind::deleted, {});
    if (!status) return status.error();
    purged.push_back(each);
  }
  return purged;
}

}  // namespace quorlo
