#pragma once

#include <array>
#include <string_view>

namespace quorlo {

// In the order in which they are offered.
inline constexpr std::array<char16_t, 4> kSeparators{u',', u';', u'\t', u'|'};

// The comma, unless another one clearly splits better: into the same number of fields, two at least, in
// nearly all of the first rows, where the comma does not.
char16_t likeliestSeparator(std::u16string_view text);

}  // namespace quorlo
