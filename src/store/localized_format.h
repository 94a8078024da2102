#pragma once

#include "base/localized.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quorlo {

// The text to show for `baseText` with the arguments, in order, in place of its first "%d" or "%@".
std::u16string localizedFormat(std::u16string_view baseText, std::u16string_view argument);
std::u16string localizedFormat(std::u16string_view baseText, std::u16string_view first,
                               std::u16string_view second);
std::u16string localizedFormat(std::u16string_view baseText, std::int64_t number);

// One of two texts, as the number asks for: `one` is whole ("1 image"), `many` has a "%d" ("%d images") and
// holds for 0, too, which is the rule of English and German.
std::u16string localizedCount(std::int64_t number, std::u16string_view one, std::u16string_view many);

}  // namespace quorlo
