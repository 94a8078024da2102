#include "store/localized_format.h"

#include "text/utf.h"

#include <algorithm>
#include <initializer_list>

namespace quorlo {
namespace {

std::u16string format(std::u16string_view baseText, std::initializer_list<std::u16string_view> arguments) {
  auto text = localized(baseText);
  std::size_t from = 0;  // behind the arguments, which may hold what looks like a place for one
  for (const auto argument : arguments) {
    const auto place = std::min(text.find(u"%d", from), text.find(u"%@", from));
    if (place == std::u16string::npos) break;
    text.replace(place, 2, argument);
    from = place + argument.size();
  }
  return text;
}

}  // namespace

std::u16string localizedFormat(std::u16string_view baseText, std::u16string_view argument) {
  return format(baseText, {argument});
}

std::u16string localizedFormat(std::u16string_view baseText, std::u16string_view first,
                               std::u16string_view second) {
  return format(baseText, {first, second});
}

std::u16string localizedFormat(std::u16string_view baseText, std::int64_t number) {
  return localizedFormat(baseText, toUtf16(std::to_string(number)));
}

std::u16string localizedCount(std::int64_t number, std::u16string_view one, std::u16string_view many) {
  return number == 1 ? localized(one) : localizedFormat(many, number);
}

}  // namespace quorlo
