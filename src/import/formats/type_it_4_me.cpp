#include "import/formats/type_it_4_me.h"

#include "base/localized.h"
#include "import/formats/imported_folders.h"
#include "import/formats/macro_text_writer.h"
#include "import/formats/property_lists/property_list_path.h"
#include "import/formats/property_lists/read_property_list.h"
#include "text/utf.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <utility>

namespace quorlo {
namespace {

// Names under which an abbreviation, its text and its title may stand, whatever the case of their letters.
constexpr std::string_view kAbbreviationKeys[]{"abbreviation", "abbrev", "shortcut"};
constexpr std::string_view kTextKeys[]{"clipping", "expansion", "plaintext", "text", "content"};
constexpr std::string_view kTitleKeys[]{"title", "label", "name"};

bool isSameKey(std::string_view key, std::string_view lowerCase) {
  return std::ranges::equal(key, lowerCase, [](char each, char lower) {
    return (each >= 'A' && each <= 'Z' ? static_cast<char>(each + ('a' - 'A')) : each) == lower;
  });
}

// The key of the dictionary that is one of these; empty for none.
std::string_view keyAmong(std::span<const std::string_view> names,
                          const PropertyList::Dictionary& dictionary) {
  for (const auto name : names) {
    const auto entry =
        std::ranges::find_if(dictionary, [&](const auto& each) { return isSameKey(each.key, name); });
    if (entry != dictionary.end()) return entry->key;
  }
  return {};
}

// Abbreviations as the keys and their texts as the values.
bool isListOfPairs(const PropertyList::Dictionary& dictionary) {
  return !dictionary.empty() && std::ranges::all_of(dictionary, [](const PropertyList::Entry& entry) {
    return entry.value.as<std::u16string>() != nullptr;
  });
}

class TypeIt4MeReader {
 public:
  Result<ImportData> read(const PropertyList& list, std::string_view fileName) {
    if (auto visited = visit(list, titleOfFile(fileName), {}); !visited) return visited.error();
    if (data_.snippets.empty())
      return Error{toUtf8(
          localized(u"No abbreviations with their texts were found in the file. Export them as text or "
                    u"CSV from the program it comes from, and import that."))};
    data_.notices.push_back(
        {{},
         localized(u"This kind of file has no public description. Texts were taken as they "
                   u"stand, with their markers. Check them.")});
    return std::move(data_);
  }

 private:
  // Recurses no deeper than a property list may be nested.
  Status visit(const PropertyList& list, const std::u16string& folder, const PropertyListPath& path) {
    const auto* const dictionary = list.as<PropertyList::Dictionary>();
    if (!dictionary) {
      return forEachElement(list, path,
                            [&](const auto& element, const auto& at) { return visit(element, folder, at); });
    }
    return visitDictionary(list, *dictionary, folder, path);
  }

  Status visitDictionary(const PropertyList& list, const PropertyList::Dictionary& dictionary,
                         const std::u16string& folder, const PropertyListPath& path) {
    const auto abbreviationKey = keyAmong(kAbbreviationKeys, dictionary);
    const auto textKey = keyAmong(kTextKeys, dictionary);
    const auto titleKey = keyAmong(kTitleKeys, dictionary);
    if (!abbreviationKey.empty() && !textKey.empty()) {
      const auto abbreviation = textAt(list, abbreviationKey, path);
      const auto text = textAt(list, textKey, path);
      const auto title = textAt(list, titleKey, path);
      if (!abbreviation) return abbreviation.error();
      if (!text) return text.error();
      if (!title) return title.error();
      addSnippet(title.value() ? *title.value() : std::u16string(), *abbreviation.value(), *text.value(),
                 folder);
      return {};
    }
    if (isListOfPairs(dictionary)) {
      for (const auto& [key, value] : dictionary)
        addSnippet({}, toUtf16(key), *value.as<std::u16string>(), folder);
      return {};
    }
    const auto* const title = titleKey.empty() ? nullptr : list.find(titleKey)->as<std::u16string>();
    for (const auto& [key, value] : dictionary) {
      if (auto visited = visit(value, title ? *title : folder, {path, key}); !visited) return visited;
    }
    return {};
  }

  void addSnippet(std::u16string title, std::u16string abbreviation, std::u16string_view text,
                  const std::u16string& folder) {
    if (text.empty()) return;
    ImportedSnippet snippet;
    snippet.title = std::move(title);
    snippet.abbreviation = std::move(abbreviation);
    auto literal = literalMacroText(text);
    snippet.text = AttributedString(std::move(literal.text));
    snippet.folder = folders_.use(folder, data_);
    if (auto notice = literalNotice(literal.signs); !notice.empty())
      data_.notices.push_back({snippet.abbreviation, std::move(notice)});
    data_.snippets.push_back(std::move(snippet));
  }

  ImportData data_;
  ImportedFolders folders_;
};

}  // namespace

Result<ImportData> readTypeIt4Me(std::string_view bytes, std::string_view fileName) {
  const auto list = readPropertyList(bytes);
  if (!list) return list.error();
  return TypeIt4MeReader().read(list.value(), fileName);
}

}  // namespace quorlo
