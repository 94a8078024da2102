#pragma once

#include "store/context/entity.h"
#include "store/context/property.h"
#include "store/context/record_set.h"

#include <array>
#include <span>
#include <string_view>

namespace quorlo {

class ManagedObject;
class QLApp;
class SqliteStatement;
class StoreAccess;

// Folders and snippets refer to applications, snippets to folders.
inline constexpr std::array kReferencedFirst{Entity::app, Entity::category, Entity::user, Entity::snippet};

// How the records of an entity stand in the library's file: each attribute in a column of the entity's table,
// under its own name, but for the rich text and the uses of a snippet, which have tables of their own.
struct StoredAttribute {
  const Property* property;
  // Takes the value over from a column of the row on which the statement stands.
  void (*take)(ManagedObject& record, const SqliteStatement& row, int column, const StoreAccess& access);
  // Of a counter, to which every process adds: what is to be added to the column.
  ValueView (*unsaved)(const ManagedObject& record) = nullptr;
};

// In the order in which they are to be taken over.
std::span<const StoredAttribute> storedAttributes(Entity entity);

// The record has a value of the property that is not in the store yet; a rich text counts with all its parts,
// the plain text and the number of pictures. False for a record that is new as a whole.
bool isUnsaved(const ManagedObject& record, const Property& property);

// A relationship to many applications, kept by the snippet or folder in a table of pairs.
struct StoredRelationship {
  const Property* property;
  std::string_view table;
  std::string_view owner;  // the column; the other one is "app"
  const RecordSet<QLApp>& (*apps)(const ManagedObject& owner);
  void (*add)(ManagedObject& owner, QLApp& app);
  void (*remove)(ManagedObject& owner, QLApp& app);
};
std::span<const StoredRelationship> storedRelationships(Entity owner);

}  // namespace quorlo
