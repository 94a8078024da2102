#include "import/formats/property_list.h"

#include <algorithm>
#include <array>

namespace quorlo {

const PropertyList* PropertyList::find(std::string_view key) const {
  const auto* const dictionary = as<Dictionary>();
  if (!dictionary) return nullptr;
  const auto entry = std::ranges::find(*dictionary, key, &Dictionary::value_type::first);
  return entry == dictionary->end() ? nullptr : &entry->second;
}

std::string_view kindName(const PropertyList& list) {
  static constexpr std::array<std::string_view, 8> kNames{
      "a yes or no", "a whole number", "a number", "a text", "data", "a list", "a dictionary", "a date"};
  return kNames[list.value.index()];
}

}  // namespace quorlo
