#include "text/quotation.h"

#include <unicode/utf16.h>

#include <cstddef>

namespace quorlo {

std::u16string quotation(std::u16string_view text) {
  constexpr std::size_t kLongest = 60;
  if (text.size() <= kLongest) return std::u16string(text);
  const bool splitsPair = U16_IS_LEAD(text[kLongest - 1]);
  return std::u16string(text.substr(0, kLongest - (splitsPair ? 1 : 0))) + u'…';
}

}  // namespace quorlo
