#include "app/settings/delimiter_keys.h"

#include "base/localized.h"

#include <bit>
#include <cstdint>

namespace quorlo {
namespace {

// The string of the member with bit n is character n.
constexpr std::u16string_view kStrings = u" \t\r!#$%&'\"*+=,-_.:;?<>()[]{}@/\\";
static_assert(kStrings.size() == DelimiterKeys::kMemberCount);

constexpr std::u16string_view kNeverTyped = u"\uF8BF";

}  // namespace

std::u16string_view DelimiterKeys::string() const {
  const auto bits = static_cast<std::uint64_t>(rawValue());
  if (!std::has_single_bit(bits)) return kNeverTyped;
  const auto bit = static_cast<std::size_t>(std::countr_zero(bits));
  return bit < kStrings.size() ? kStrings.substr(bit, 1) : kNeverTyped;
}

std::u16string DelimiterKeys::displayString() const {
  if (*this == kSpaceDelimiter) return localized(u"Space");
  if (*this == kTabDelimiter) return localized(u"Tab");
  if (*this == kReturnDelimiter) return localized(u"Return");
  return std::u16string(string());
}

}  // namespace quorlo
