#include "store/localized_format.h"

#include "text/utf.h"

#include <algorithm>

namespace quorlo {

std::u16string localizedFormat(std::u16string_view baseText, std::u16string_view argument) {
  auto text = localized(baseText);
  const auto place = std::min(text.find(u"%d"), text.find(u"%@"));
  if (place != std::u16string::npos) text.replace(place, 2, argument);
  return text;
}

std::u16string localizedFormat(std::u16string_view baseText, std::int64_t number) {
  return localizedFormat(baseText, toUtf16(std::to_string(number)));
}

}  // namespace quorlo
