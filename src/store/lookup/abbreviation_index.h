#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quorlo {

class QLSnippet;

// Finds snippets by abbreviation in constant time. An open-addressing table that keeps the hashes apart
// from the snippets: a text that is no abbreviation is nearly always refused by one look at four bytes,
// and a library of 100,000 abbreviations is asked within one megabyte. Holds no ownership.
class AbbreviationIndex {
 public:
  // Each snippet once, under the abbreviation that it has; not empty.
  void add(QLSnippet& snippet);
  // Before its abbreviation changes.
  void remove(const QLSnippet& snippet);

  // Of several the one created first, by uuid where that is equal, `besides` left out; null when there is
  // none. Refuses texts of a length that no abbreviation has without hashing them.
  QLSnippet* find(std::u16string_view abbreviation, const QLSnippet* besides = nullptr) const;

  std::size_t size() const { return size_; }

 private:
  std::size_t home(std::uint32_t hash) const { return hash & mask_; }
  std::size_t next(std::size_t place) const { return (place + 1) & mask_; }
  void place(std::uint32_t hash, QLSnippet& snippet);
  void grow();

  // A hash of 0 marks a free place. The tables have a power of two places, mask_ + 1, at most half of
  // them in use.
  std::vector<std::uint32_t> hashes_;
  std::vector<QLSnippet*> snippets_;
  std::size_t mask_ = 0;
  std::size_t size_ = 0;
  std::vector<std::size_t> countByLength_;  // UTF-16 units; up to the longest that ever was
};

}  // namespace quorlo
