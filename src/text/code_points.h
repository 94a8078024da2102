#pragma once

#include <string>
#include <string_view>

namespace quorlo {

// One element for each code point; a lone surrogate stays one.
std::u32string toUtf32(std::u16string_view text);
std::u16string toUtf16(std::u32string_view text);

}  // namespace quorlo
