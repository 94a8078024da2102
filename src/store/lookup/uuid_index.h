#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quorlo {

class ManagedObject;

// Finds snippets, or folders, by uuid in constant time. An open-addressing table that keeps the hashes beside
// the records. Made when it is first needed, then kept current. Holds no ownership.
class UuidIndex {
 public:
  bool isBuilt() const { return !places_.empty(); }
  void build(const std::vector<ManagedObject*>& records);

  // Both do nothing before it is built. A record is removed before its uuid changes; an empty one is not
  // listed.
  void add(ManagedObject& record);
  void remove(const ManagedObject& record);

  // Of several the one that came into the context first; null when there is none.
  ManagedObject* find(std::string_view uuid) const;

 private:
  struct Place {
    std::uint64_t hash = 0;
    ManagedObject* record = nullptr;  // null marks a free place
  };
  std::size_t next(std::size_t place) const { return (place + 1) & (places_.size() - 1); }
  std::size_t home(std::uint64_t hash) const { return hash & (places_.size() - 1); }
  void put(Place entry);
  void resize(std::size_t size);

  std::vector<Place> places_;  // a power of two, at most half of them in use
  std::size_t used_ = 0;
};

}  // namespace quorlo
