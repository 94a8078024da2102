#include "store/history/remote_changes.h"

#include "store/sqlite/stored_attributes.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

using Kind = HistoryChange::Kind;

// A row is never given to another record, but one that was deleted may come back with what was unsaved.
void fold(HistoryChange& earlier, const HistoryChange& later) {
  if (later.kind != Kind::updated) {
    earlier.kind = later.kind;
    earlier.changedProperties.clear();
  } else if (earlier.kind == Kind::updated) {
    for (const auto& each : later.changedProperties) {
      auto& names = earlier.changedProperties;
      if (std::ranges::find(names, each) == names.end()) names.push_back(each);
    }
  }
}

bool mayMakeDuplicate(const HistoryChange& change) {
  constexpr std::string_view kTelling[] = {"title", "uuid", "type", "sourceType"};
  return change.entity == Entity::category &&
         (change.kind == Kind::inserted ||
          std::ranges::any_of(change.changedProperties, [&kTelling](std::string_view name) {
            return std::ranges::find(kTelling, name) != std::end(kTelling);
          }));
}

// A folder goes after its snippets, which would all have to leave it at once otherwise.
std::ptrdiff_t placeOf(const HistoryChange& change) {
  const auto entity = std::ranges::find(kReferencedFirst, change.entity) - kReferencedFirst.begin();
  return change.kind == Kind::deleted ? kEntityCount - entity : kEntityCount + 1 + entity;
}

}  // namespace

RemoteChanges walk(const std::vector<HistoryTransaction>& transactions) {
  RemoteChanges changes;
  std::map<std::pair<Entity, std::int64_t>, std::size_t> places;
  for (const auto& transaction : transactions) {
    for (const auto& each : transaction.changes) {
      const auto [place, isFirst] = places.try_emplace({each.entity, each.row}, changes.records.size());
      if (isFirst) {
        changes.records.push_back(each);
      } else {
        fold(changes.records[place->second], each);
      }
    }
  }
  std::ranges::stable_sort(changes.records, {}, placeOf);
  for (const auto& each : changes.records) {
    if (mayMakeDuplicate(each)) changes.foldersToCheck.push_back(each.row);
  }
  return changes;
}

}  // namespace quorlo
