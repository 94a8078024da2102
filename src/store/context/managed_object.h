#pragma once

#include "base/date.h"
#include "base/observers.h"
#include "base/subscription.h"
#include "store/context/entity.h"
#include "store/context/property.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {

class ManagedObjectContext;

// A record of the library. It is made free of any context, filled, and put into one with
// ManagedObjectContext::insert; from then on its setters mark it as changed there. A setter that is
// given the value already there does nothing. Held by shared_ptr, so a record that was deleted, or whose
// context is gone, is safe to keep: it has no relationships then, and its setters only fill fields.
// Main thread, or the thread of a background context.
//
// Relationships join records of one context only; a setter given anything else does nothing.
class ManagedObject : public std::enable_shared_from_this<ManagedObject> {
 public:
  ManagedObject(const ManagedObject&) = delete;
  ManagedObject& operator=(const ManagedObject&) = delete;
  virtual ~ManagedObject();

  Entity entity() const { return objectID_.entity; }
  ObjectID objectID() const { return objectID_; }

  // Names the record in the library's file, for every process that reads it; 0 before it was first saved.
  std::int64_t rowNumber() const { return rowNumber_; }

  // Null before insertion and after deletion.
  ManagedObjectContext* managedObjectContext() const { return context_; }
  bool isDeleted() const { return isDeleted_; }

  // Those set since the last save, in the order of their first change; empty for a record that has not
  // been saved yet, all of which is new.
  const std::vector<const Property*>& changedProperties() const { return changedProperties_; }

  // Calls with the name of each property, derived ones included, right after it has changed.
  Subscription observeChanges(std::function<void(std::string_view name)> callback);

 protected:
  // A record of which a stored relationship leads to this one.
  struct Referrer {
    ManagedObject& record;
    const Property& relationship;
  };

  explicit ManagedObject(Entity entity) : objectID_{entity, 0} {}

  // True when the value was another one.
  template <class T>
  bool set(T& field, T value, const Property& property) {
    if (field == value) return false;
    field = std::move(value);
    didChange(property);
    return true;
  }

  void didChange(const Property& property);
  void announce(std::string_view name) const;

  // Both in one context, in which relationships may join them.
  bool sharesContextWith(const ManagedObject& other) const;

 private:
  friend class ManagedObjectContext;
  friend class Relationship;
  friend class StoreAccess;

  // In the context's indexes, whether made here or read from the store.
  virtual void enterIndexes(ManagedObjectContext&) {}
  virtual void awakeFromInsert(ManagedObjectContext&) {}
  virtual void awakeFromFetch() {}

  // Clears both sides of every relationship, marking the other side as changed, and leaves the indexes.
  virtual void prepareForDeletion() {}
  // Forgets every relationship without a trace; the other side is forgotten too.
  virtual void dropRelationships() {}
  virtual std::vector<Referrer> referrers() const { return {}; }
  // Others have deleted the record, which has unsaved changes and is to be stored again.
  virtual void didLoseRow() {}

  ObjectID objectID_;
  std::int64_t rowNumber_ = 0;
  ManagedObjectContext* context_ = nullptr;
  bool isDeleted_ = false;
  std::vector<const Property*> changedProperties_;
  std::unique_ptr<Observers<std::string_view>> observers_;  // made when somebody asks
};

}  // namespace quorlo
