#pragma once

#include "base/date.h"
#include "store/context/entity.h"

#include <compare>
#include <cstdint>
#include <string_view>
#include <variant>

namespace quorlo {

class ManagedObject;

// What a property of a record holds at the moment, without a copy; monostate is nil. Booleans count as
// the integers 0 and 1, enumerations as their raw values, texts are UTF-16, identifiers UTF-8.
using ValueView = std::variant<std::monostate, std::int64_t, double, Date, std::u16string_view,
                               std::string_view, const ManagedObject*>;

// Nil comes before everything else; values of different kinds are unordered. Texts are compared by code
// unit, records by identity only.
std::partial_ordering compare(const ValueView& left, const ValueView& right);

// One property of an entity, or of the record that a relationship of it leads to ("category.type").
// There is one constant for each, whose address is its identity.
struct Property {
  Entity entity;
  std::string_view name;
  ValueView (*read)(const ManagedObject& record);  // only for records of the entity
  bool isSearched = false;                         // one of the texts in the context's SearchIndex
  bool isInverse = false;                          // stored with the records of the relationship's other side
};

}  // namespace quorlo
