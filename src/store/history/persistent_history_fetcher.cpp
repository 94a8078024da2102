#include "store/history/persistent_history_fetcher.h"

#include "store/sqlite/sqlite_database.h"

#include <optional>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

constexpr std::string_view kFetch =
    "SELECT t.number, t.timestamp, t.author, t.contextName, c.entity, c.row, c.kind, c.changedProperties "
    "FROM HistoryTransaction t LEFT JOIN HistoryChange c ON c.transactionNumber = t.number "
    "WHERE t.timestamp > ?1 AND ((t.author <> ?2 AND t.contextName <> ?3) OR (t.session NOT IN ('', ?4) AND t.timestamp > ?5)) "
    "ORDER BY t.timestamp, c.number";

enum Column { number, timestamp, author, contextName, entity, row, kind, changedProperties };

std::optional<Entity> entityNamed(std::string_view name) {
  for (int i = 0; i < kEntityCount; ++i) {
    if (entityName(static_cast<Entity>(i)) == name) return static_cast<Entity>(i);
  }
  return std::nullopt;
}

std::vector<std::string> namesOf(std::string_view list) {
  std::vector<std::string> names;
  while (!list.empty()) {
    const auto end = list.find(',');
    names.emplace_back(list.substr(0, end));
    list.remove_prefix(end == list.npos ? list.size() : end + 1);
  }
  return names;
}

}  // namespace

Result<std::vector<HistoryTransaction>> PersistentHistoryFetcher::fetch() const {
  auto statement = context.prepare(kFetch);
  statement.bind(1, fromDate)
      .bind(2, std::string_view(author))
      .bind(3, std::string_view(contextName))
      .bind(4, std::string_view(session))
      .bind(5, loaded);
  std::vector<HistoryTransaction> transactions;
  std::int64_t lastNumber = 0;
  for (;;) {
    const auto found = statement.step();
    if (!found) return found.error();
    if (!found.value()) return transactions;
    if (transactions.empty() || statement.integer(Column::number) != lastNumber) {
      lastNumber = statement.integer(Column::number);
      transactions.push_back({*statement.date(Column::timestamp),
                              std::string(statement.text(Column::author)),
                              std::string(statement.text(Column::contextName)),
                              {}});
    }
    if (const auto changed = entityNamed(statement.text(Column::entity))) {
      transactions.back().changes.push_back(
          {*changed, statement.integer(Column::row),
           static_cast<HistoryChange::Kind>(statement.integer(Column::kind)),
           namesOf(statement.text(Column::changedProperties))});
    }
  }
}

}  // namespace quorlo
