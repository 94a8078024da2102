#include "import/formats/property_lists/property_list.h"

#include "base/localized.h"

#include <algorithm>
#include <array>

namespace quorlo {

const PropertyList* PropertyList::find(std::string_view key) const {
  const auto* const dictionary = as<Dictionary>();
  if (!dictionary) return nullptr;
  const auto entry = std::ranges::find(*dictionary, key, &Entry::key);
  return entry == dictionary->end() ? nullptr : &entry->value;
}

std::u16string kindName(const PropertyList& list) {
  static constexpr std::array<std::u16string_view, 8> kNames{u"yes or no",    u"a whole number", u"a number",
                                                             u"a text",       u"data",           u"a list",
                                                             u"a dictionary", u"a date"};
  return localized(kNames[list.value.index()]);
}

}  // namespace quorlo
