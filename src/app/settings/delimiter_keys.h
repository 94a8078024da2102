#pragma once

#include "app/settings/option_set.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace quorlo {

// The keys and symbols that complete an abbreviation.
class DelimiterKeys : public OptionSet<DelimiterKeys> {
 public:
  static constexpr std::size_t kMemberCount = 31;

  using OptionSet::OptionSet;

  // In the order of their bits.
  static constexpr std::array<DelimiterKeys, kMemberCount> members();

  // What typing the key produces. U+F8BF, which no key types, for anything but a single member.
  std::u16string_view string() const;
  // What the settings show for a single member.
  std::u16string displayString() const;
};

constexpr std::array<DelimiterKeys, DelimiterKeys::kMemberCount> DelimiterKeys::members() {
  std::array<DelimiterKeys, kMemberCount> all;
  for (std::size_t bit = 0; bit < kMemberCount; ++bit) all[bit] = DelimiterKeys(RawValue{1} << bit);
  return all;
}

inline constexpr DelimiterKeys kSpaceDelimiter(1);
inline constexpr DelimiterKeys kTabDelimiter(2);
inline constexpr DelimiterKeys kReturnDelimiter(4);

}  // namespace quorlo
