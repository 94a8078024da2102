#pragma once

#include "store/entity.h"
#include "store/property.h"

#include <span>
#include <string_view>

namespace quorlo {

class ManagedObject;
class SqliteStatement;
class StoreAccess;

// Which attributes of the records stand in columns of their entity's table, under their own names. Rich text
// and to-many relationships stand in tables of their own.
struct StoredAttribute {
  const Property* property;
  // Takes the value over from a column of the row that the statement stands on; within the life of the access.
  void (*take)(ManagedObject& record, const SqliteStatement& row, int column, const StoreAccess& access);
};
std::span<const StoredAttribute> storedAttributes(Entity entity);

// Binds the value that the record has now. A relationship to one is bound as the number of a row, by `rowOf`;
// 0 counts as none.
using RowOf = std::int64_t (*)(const ManagedObject& record, const void* context);

// To-many relationships to applications, each a table of pairs, kept by the snippet or the folder.
struct StoredRelationship {
  const Property* property;
  std::string_view table;
  std::string_view ownerColumn;
};
std::span<const StoredRelationship> storedRelationships(Entity owner);

}  // namespace quorlo
