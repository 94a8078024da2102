#include "text/code_points.h"

#include <unicode/utf16.h>

namespace quorlo {

std::u32string toUtf32(std::u16string_view text) {
  std::u32string out;
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c = 0;
    U16_NEXT(text, i, text.size(), c);
    out += static_cast<char32_t>(c);
  }
  return out;
}

std::u16string toUtf16(std::u32string_view text) {
  std::u16string out;
  for (const auto c : text) {
    if (U_IS_BMP(c)) {
      out += static_cast<char16_t>(c);
    } else {
      out += static_cast<char16_t>(U16_LEAD(c));
      out += static_cast<char16_t>(U16_TRAIL(c));
    }
  }
  return out;
}

}  // namespace quorlo
