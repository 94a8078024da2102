#include "store/lookup/uuid_index.h"

#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kSmallestTable = 16;

const std::string& uuidOf(const ManagedObject& record) {
  return record.entity() == Entity::snippet ? static_cast<const QLSnippet&>(record).uuid()
                                            : static_cast<const QLCategory&>(record).uuid();
}

std::uint64_t hashOf(std::string_view uuid) {
  return std::hash<std::string_view>()(uuid);
}

}  // namespace

void UuidIndex::build(const std::vector<ManagedObject*>& records) {
  resize(std::bit_ceil(std::max(kSmallestTable, 2 * records.size() + 1)));
  for (auto* each : records) add(*each);
}

void UuidIndex::add(ManagedObject& record) {
  if (!isBuilt() || uuidOf(record).empty()) return;
  if (2 * (used_ + 1) > places_.size()) resize(2 * places_.size());
  put({hashOf(uuidOf(record)), &record});
}

void UuidIndex::remove(const ManagedObject& record) {
  if (!isBuilt() || uuidOf(record).empty()) return;
  auto hole = home(hashOf(uuidOf(record)));
  for (; places_[hole].record != &record; hole = next(hole)) {
    if (places_[hole].record == nullptr) return;
  }
  --used_;
  // Records behind the hole move up unless that would put them before the place where they are sought.
  const auto mask = places_.size() - 1;
  for (auto at = next(hole); places_[at].record != nullptr; at = next(at)) {
    if (((at - home(places_[at].hash)) & mask) < ((at - hole) & mask)) continue;
    places_[hole] = places_[at];
    hole = at;
  }
  places_[hole] = {};
}

ManagedObject* UuidIndex::find(std::string_view uuid) const {
  if (!isBuilt()) return nullptr;
  const auto hash = hashOf(uuid);
  ManagedObject* first = nullptr;
  for (auto at = home(hash); places_[at].record != nullptr; at = next(at)) {
    const auto& [known, record] = places_[at];
    if (known != hash || uuidOf(*record) != uuid) continue;
    if (first == nullptr || record->objectID() < first->objectID()) first = record;
  }
  return first;
}

void UuidIndex::put(Place entry) {
  auto at = home(entry.hash);
  for (; places_[at].record != nullptr; at = next(at)) {
    if (places_[at].record == entry.record) return;
  }
  places_[at] = entry;
  ++used_;
}

void UuidIndex::resize(std::size_t size) {
  const auto before = std::exchange(places_, std::vector<Place>(size));
  used_ = 0;
  for (const auto& each : before) {
    if (each.record != nullptr) put(each);
  }
}

}  // namespace quorlo
