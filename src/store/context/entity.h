#pragma once

#include <cstdint>
#include <string_view>

namespace quorlo {

// The kinds of records that the library holds.
enum class Entity { snippet, category, app, user };
inline constexpr int kEntityCount = 4;

constexpr std::string_view entityName(Entity entity) {
  constexpr std::string_view kNames[] = {"Snippet", "Category", "App", "User"};
  return kNames[static_cast<int>(entity)];
}

constexpr bool hasUuid(Entity entity) {
  return entity == Entity::snippet || entity == Entity::category;
}

// Names a record within its context for as long as the context lives; never given twice.
struct ObjectID {
  Entity entity = Entity::snippet;
  std::uint64_t number = 0;  // 0: of a record that never was in a context

  auto operator<=>(const ObjectID&) const = default;
};

}  // namespace quorlo
