#pragma once

#include "base/result.h"
#include "import/formats/property_lists/property_list.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// Where a value stands in a property list, for messages: a chain of places on the stack, written out only
// when something is wrong.
class PropertyListPath {
 public:
  PropertyListPath() = default;
  PropertyListPath(const PropertyListPath& container, std::string_view key)
      : container_(&container), key_(key) {}
  PropertyListPath(const PropertyListPath& container, std::size_t index)
      : container_(&container), index_(index) {}

  // "snippetsTE2[3].plainText"; empty for the whole list.
  std::string text() const;

 private:
  const PropertyListPath* container_ = nullptr;
  std::string_view key_;
  std::optional<std::size_t> index_;
};

// A value of the dictionary that stands at the path; null where it has no such key. Fails when the value is
// of another kind; the message names its place.
Result<const std::u16string*> textAt(const PropertyList& dictionary, std::string_view key,
                                     const PropertyListPath& path);
Result<std::optional<std::int64_t>> integerAt(const PropertyList& dictionary, std::string_view key,
                                              const PropertyListPath& path);

// Calls `visit(element, path)` for each element of the list that stands at the path, until one fails. A value
// of another kind has no elements.
template <class Visit>
Status forEachElement(const PropertyList& list, const PropertyListPath& path, Visit visit) {
  const auto* const elements = list.as<PropertyList::Array>();
  for (std::size_t i = 0; elements != nullptr && i < elements->size(); ++i) {
    if (auto visited = visit((*elements)[i], PropertyListPath(path, i)); !visited) return visited;
  }
  return {};
}

// That a value of one kind stands where another belongs. `expected` is localised.
Error wrongKind(const PropertyList& value, const PropertyListPath& path, std::u16string_view expected);

}  // namespace quorlo
