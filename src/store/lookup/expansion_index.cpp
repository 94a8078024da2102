#include "store/lookup/expansion_index.h"

#include <algorithm>

namespace quorlo {

void ExpansionIndex::addApp(const std::string& bundleID, std::int64_t type) {
  apps_.emplace(bundleID, type);
}

void ExpansionIndex::removeApp(const std::string& bundleID, std::int64_t type) {
  const auto [first, last] = apps_.equal_range(bundleID);
  const auto found = std::find_if(first, last, [type](const auto& each) { return each.second == type; });
  if (found != last) apps_.erase(found);
}

bool ExpansionIndex::hasApp(std::string_view bundleID, std::int64_t type) const {
  if (bundleID.empty()) return false;
  const auto [first, last] = apps_.equal_range(bundleID);
  return std::any_of(first, last, [type](const auto& each) { return each.second == type; });
}

}  // namespace quorlo
