#pragma once

#include "store/context/predicate.h"
#include "store/context/property.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace quorlo {

// Records without a value come first in ascending order. Texts are ordered by code unit.
struct SortDescriptor {
  const Property* key;
  bool ascending = true;

  bool operator==(const SortDescriptor&) const = default;
};

// Which records of a kind a fetch returns, and in which order; equal ones, and all where no order is
// given, in the order of their insertion.
template <class Record>
struct FetchRequest {
  std::optional<Predicate> predicate = std::nullopt;
  std::vector<SortDescriptor> sortDescriptors = {};
  std::size_t fetchLimit = 0;  // 0: no limit
};

}  // namespace quorlo
