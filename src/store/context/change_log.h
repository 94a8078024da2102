#pragma once

#include "store/context/entity.h"

#include <map>
#include <memory>
#include <vector>

namespace quorlo {

class ManagedObject;

// Records that came, changed and went since some moment, each in one of the lists, in the order of
// their insertion.
struct ChangeSet {
  std::vector<std::shared_ptr<ManagedObject>> inserted;
  std::vector<std::shared_ptr<ManagedObject>> updated;
  std::vector<std::shared_ptr<ManagedObject>> deleted;
};

// Collects the changes for a ChangeSet. A record that came and went leaves no trace.
class ChangeLog {
 public:
  void noteInsertion(std::shared_ptr<ManagedObject> record);
  void noteUpdate(ManagedObject& record);
  void noteDeletion(std::shared_ptr<ManagedObject> record);

  void forget(const ManagedObject& record);

  bool empty() const { return entries_.empty(); }
  bool holds(const ManagedObject& record) const;
  bool holdsInsertionOf(const ManagedObject& record) const;
  ChangeSet changes() const;
  void clear() { entries_.clear(); }

 private:
  enum class Kind { inserted, updated, deleted };
  struct Entry {
    std::shared_ptr<ManagedObject> record;
    Kind kind;
  };
  std::map<ObjectID, Entry> entries_;
};

}  // namespace quorlo
