#include "store/context/change_log.h"

#include "store/context/managed_object.h"

#include <utility>

namespace quorlo {

void ChangeLog::noteInsertion(std::shared_ptr<ManagedObject> record) {
  const auto id = record->objectID();
  entries_.insert_or_assign(id, Entry{std::move(record), Kind::inserted});
}

void ChangeLog::noteUpdate(ManagedObject& record) {
  const auto place = entries_.lower_bound(record.objectID());
  if (place != entries_.end() && place->first == record.objectID()) return;
  entries_.emplace_hint(place, record.objectID(), Entry{record.shared_from_this(), Kind::updated});
}

void ChangeLog::noteDeletion(std::shared_ptr<ManagedObject> record) {
  if (holdsInsertionOf(*record)) {
    entries_.erase(record->objectID());
    return;
  }
  const auto id = record->objectID();
  entries_.insert_or_assign(id, Entry{std::move(record), Kind::deleted});
}

void ChangeLog::forget(const ManagedObject& record) {
  entries_.erase(record.objectID());
}

bool ChangeLog::holds(const ManagedObject& record) const {
  return entries_.contains(record.objectID());
}

bool ChangeLog::holdsInsertionOf(const ManagedObject& record) const {
  const auto found = entries_.find(record.objectID());
  return found != entries_.end() && found->second.kind == Kind::inserted;
}

ChangeSet ChangeLog::changes() const {
  ChangeSet changes;
  for (const auto& [id, entry] : entries_) {
    auto& list = entry.kind == Kind::inserted  ? changes.inserted
                 : entry.kind == Kind::updated ? changes.updated
                                               : changes.deleted;
    list.push_back(entry.record);
  }
  return changes;
}

}  // namespace quorlo
