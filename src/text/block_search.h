#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <type_traits>

namespace quorlo {

// Where the needle, which is not empty, occurs first at or after `from`; npos for nowhere. Compares both
// ends of the needle first, in blocks whose loop the compiler turns into vector instructions: text without
// a match is passed quickly.
template <class Char>
std::size_t findInBlocks(std::basic_string_view<Char> haystack, std::basic_string_view<Char> needle,
                         std::size_t from = 0) {
  using Unit = std::make_unsigned_t<Char>;
  constexpr std::size_t kBlock = 32;
  if (haystack.size() < from + needle.size()) return haystack.npos;
  const auto positions = haystack.size() - needle.size() + 1;
  const auto* const fronts = haystack.data();
  const auto* const backs = fronts + needle.size() - 1;
  std::size_t i = from;
  for (; i + kBlock <= positions; i += kBlock) {
    Unit least = static_cast<Unit>(-1);  // 0 where both ends match
    for (std::size_t k = 0; k < kBlock; ++k) {
      const auto differing = (fronts[i + k] ^ needle.front()) | (backs[i + k] ^ needle.back());
      least = std::min(least, static_cast<Unit>(differing));
    }
    if (least != 0) continue;
    const auto found = haystack.substr(i, kBlock + needle.size() - 1).find(needle);
    if (found != haystack.npos) return i + found;
  }
  return haystack.find(needle, i);
}

}  // namespace quorlo
