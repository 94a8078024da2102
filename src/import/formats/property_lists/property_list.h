#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorlo {

// A property list as it stands in a file, XML or binary: a value type, apart from whatever read it.
// The document type of the XML form names the kinds: http://www.apple.com/DTDs/PropertyList-1.0.dtd
struct PropertyList {
  struct Entry;
  using Array = std::vector<PropertyList>;
  using Dictionary = std::vector<Entry>;
  using Data = std::vector<std::uint8_t>;

  // A value of which only the kind is known; no file of snippets says anything by it.
  enum class Other { date, uid };

  std::variant<bool, std::int64_t, double, std::u16string, Data, Array, Dictionary, Other> value;

  // Null when this is of another kind.
  template <class Kind>
  const Kind* as() const;

  // Of a dictionary, the first one; null where the key is not there, or where this is no dictionary. Takes
  // time by the number of keys.
  const PropertyList* find(std::string_view key) const;
};

struct PropertyList::Entry {
  std::string key;  // UTF-8
  PropertyList value;
};

template <class Kind>
const Kind* PropertyList::as() const {
  return std::get_if<Kind>(&value);
}

// "a text", "a dictionary" and so on, localised.
std::u16string kindName(const PropertyList& list);

// What a property list may hold. More than any library of snippets has, and little enough for the memory of
// a small computer.
inline constexpr std::size_t kLargestPropertyList = std::size_t{256} << 20;  // bytes of the file
inline constexpr std::size_t kDeepestPropertyList = 64;                      // arrays and dictionaries
inline constexpr std::size_t kMostPropertyListValues = 4'000'000;            // keys count as well
inline constexpr std::size_t kMostPropertyListKeys = 100'000;                // of one dictionary
inline constexpr std::size_t kMostPropertyListText = std::size_t{32}
                                                     << 20;  // bytes of all texts, not of data

}  // namespace quorlo
