#include "import/formats/property_lists/read_property_list.h"

#include "base/localized.h"
#include "import/formats/property_lists/check_binary_property_list.h"
#include "import/formats/property_lists/prepare_xml_property_list.h"
#include "text/utf.h"

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

struct NodeDeleter {
  void operator()(void* node) const { plist_free(node); }
};
using Tree = std::unique_ptr<void, NodeDeleter>;

struct MemoryDeleter {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Memory = std::unique_ptr<T, MemoryDeleter>;

PropertyList convert(plist_t node);

std::u16string convertText(plist_t node) {
  std::uint64_t length = 0;
  const auto* const text = plist_get_string_ptr(node, &length);
  return text ? toUtf16({text, length}) : std::u16string();
}

PropertyList::Data convertData(plist_t node) {
  std::uint64_t length = 0;
  const auto* const bytes = plist_get_data_ptr(node, &length);
  return bytes ? PropertyList::Data(bytes, bytes + length) : PropertyList::Data();
}

PropertyList::Array convertArray(plist_t node) {
  PropertyList::Array array;
  array.reserve(plist_array_get_size(node));
  void* iterator = nullptr;
  plist_array_new_iter(node, &iterator);
  const Memory<void> owner(iterator);
  plist_t item = nullptr;
  for (plist_array_next_item(node, iterator, &item); item; plist_array_next_item(node, iterator, &item)) {
    array.push_back(convert(item));
  }
  return array;
}

PropertyList::Dictionary convertDictionary(plist_t node) {
  PropertyList::Dictionary dictionary;
  dictionary.reserve(plist_dict_get_size(node));
  void* iterator = nullptr;
  plist_dict_new_iter(node, &iterator);
  const Memory<void> owner(iterator);
  for (;;) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node, iterator, &key, &value);
    const Memory<char> keyOwner(key);
    if (!value) return dictionary;
    dictionary.push_back({key ? key : "", convert(value)});
  }
}

// Recurses no deeper than the checks have let pass.
PropertyList convert(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t value = 0;
      plist_get_bool_val(node, &value);
      return {value != 0};
    }
    case PLIST_UINT: {
      std::uint64_t value = 0;  // a negative number as its two's complement
      plist_get_uint_val(node, &value);
      return {static_cast<std::int64_t>(value)};
    }
    case PLIST_REAL: {
      double value = 0;
      plist_get_real_val(node, &value);
      return {value};
    }
    case PLIST_STRING:
      return {convertText(node)};
    case PLIST_DATA:
      return {convertData(node)};
    case PLIST_ARRAY:
      return {convertArray(node)};
    case PLIST_DICT:
      return {convertDictionary(node)};
    case PLIST_UID:
      return {PropertyList::Other::uid};
    default:
      return {PropertyList::Other::date};
  }
}

Error notParsed() {
  return {
      "The property list cannot be read, though nothing is wrong with its form. Export it again, in the other form "
      "(XML or binary) where the program offers both."};
}

Result<PropertyList> readBinary(std::string_view bytes) {
  if (auto checked = checkBinaryPropertyList(bytes); !checked) return checked.error();
  plist_t root = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  const Tree tree(root);
  return tree ? Result<PropertyList>(convert(tree.get())) : notParsed();
}

Result<PropertyList> readXml(std::string_view bytes) {
  const auto prepared = prepareXmlPropertyList(bytes);
  if (!prepared) return prepared.error();
  const auto& text = prepared.value();
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) return notParsed();
  plist_t root = nullptr;
  plist_from_xml(text.data(), static_cast<std::uint32_t>(text.size()), &root);
  const Tree tree(root);
  return tree ? Result<PropertyList>(convert(tree.get())) : notParsed();
}

bool isUtf16(std::string_view bytes) {
  return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE");
}

}  // namespace

Result<PropertyList> readPropertyList(std::string_view bytes) {
  const auto failure = [](std::u16string_view what) { return Error{toUtf8(localized(what))}; };
  if (bytes.size() > kLargestPropertyList)
    return failure(u"The file is larger than 256 MiB. Export fewer snippets at a time.");
  if (bytes.empty()) return failure(u"The file is empty. Copy or export it again.");
  if (bytes.starts_with("bplist00")) return readBinary(bytes);
  if (isUtf16(bytes))
    return failure(u"The file is in UTF-16. Save it in UTF-8 with a text editor, and import that.");
  const auto start = bytes.find_first_not_of("\xEF\xBB\xBF \t\r\n");
  if (start != std::string_view::npos && bytes[start] == '<') return readXml(bytes);
  return failure(
      u"The file is no property list: it begins neither with “<” (XML) nor with “bplist00” (binary). Export "
      u"it again from the program it comes from.");
}

}  // namespace quorlo
