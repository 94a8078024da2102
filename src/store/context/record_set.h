#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace quorlo {

// The records of a to-many relationship: distinct, in no promised order, each found, added and removed
// in constant time. Holds no ownership; relationships are cleared before their records go.
template <class Record>
class RecordSet {
 public:
  auto begin() const { return records_.begin(); }
  auto end() const { return records_.end(); }
  std::size_t size() const { return records_.size(); }
  bool empty() const { return records_.empty(); }

  bool contains(const Record* record) const { return find(record) < records_.size(); }

  // False when it was there already.
  bool add(Record* record) {
    if (contains(record)) return false;
    records_.push_back(record);
    if (places_) {
      places_->emplace(record, records_.size() - 1);
    } else if (records_.size() > kScanLimit) {
      places_ = std::make_unique<Places>();
      for (std::size_t i = 0; i < records_.size(); ++i) places_->emplace(records_[i], i);
    }
    return true;
  }

  // False when it was not there.
  bool remove(const Record* record) {
    const auto place = find(record);
    if (place == records_.size()) return false;
    if (places_) {
      (*places_)[records_.back()] = place;
      places_->erase(record);
    }
    records_[place] = records_.back();
    records_.pop_back();
    return true;
  }

  void clear() {
    records_.clear();
    places_.reset();
  }

 private:
  using Places = std::unordered_map<const Record*, std::size_t>;
  static constexpr std::size_t kScanLimit = 16;

  std::size_t find(const Record* record) const {
    if (!places_) {
      return static_cast<std::size_t>(std::ranges::find(records_, record) - records_.begin());
    }
    const auto found = places_->find(record);
    return found == places_->end() ? records_.size() : found->second;
  }

  std::vector<Record*> records_;
  std::unique_ptr<Places> places_;  // null while a scan is as quick, as it is in nearly all of them
};

}  // namespace quorlo
