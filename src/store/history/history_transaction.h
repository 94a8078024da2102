#pragma once

#include "base/date.h"
#include "store/context/entity.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quorlo {

// What a save did to one record.
struct HistoryChange {
  enum class Kind { inserted = 0, updated = 1, deleted = 2 };  // as stored

  Entity entity = Entity::snippet;
  std::int64_t row = 0;
  Kind kind = Kind::inserted;
  std::vector<std::string> changedProperties = {};  // of an update, relationships included

  bool operator==(const HistoryChange&) const = default;
};

// One save of one process. No two have the same timestamp, and each is later than the one before,
// whatever the clock does.
struct HistoryTransaction {
  Date timestamp;
  std::string author;
  std::string contextName;
  std::vector<HistoryChange> changes;
};

}  // namespace quorlo
