#pragma once

#include <algorithm>
#include <cstddef>

namespace quorlo {

// A stretch of a text in UTF-16 code units. It may begin or end between the halves of a surrogate pair.
struct TextRange {
  std::size_t location = 0;
  std::size_t length = 0;

  std::size_t end() const { return location + length; }

  // The part of the range that lies inside a text of `size` units; empty at `size` when none does.
  TextRange clampedTo(std::size_t size) const {
    const auto start = std::min(location, size);
    return {start, std::min(length, size - start)};
  }

  bool operator==(const TextRange&) const = default;
};

}  // namespace quorlo
