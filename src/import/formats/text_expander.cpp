#include "import/formats/text_expander.h"

#include "base/localized.h"
#include "import/formats/imported_folders.h"
#include "import/formats/known_image.h"
#include "import/formats/macro_text_writer.h"
#include "import/formats/property_lists/property_list_path.h"
#include "import/formats/property_lists/read_property_list.h"
#include "import/formats/text_expander_markers.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace quorlo {
namespace {

// The numbers of "snippetType".
enum TextExpanderType : std::int64_t {
  plain = 0,
  formatted = 1,
  appleScript = 2,
  shellScript = 3,
  javaScript = 4
};

bool isScript(std::int64_t type) {
  return type == appleScript || type == shellScript || type == javaScript;
}

bool isSnippet(const PropertyList& list) {
  static constexpr std::array<std::string_view, 3> kKeys{"plainText", "abbreviation", "snippetType"};
  return std::ranges::any_of(kKeys, [&](std::string_view key) { return list.find(key) != nullptr; });
}

// Of lists of several versions of the format, which are beside each other, only the newest is read: the older
// ones hold a note to those who open the file with an old version.
bool isOutdated(std::string_view key, const PropertyList::Dictionary& dictionary) {
  constexpr std::string_view kList = "snippetsTE";
  return key.starts_with(kList) && std::ranges::any_of(dictionary, [&](const auto& entry) {
           return entry.key.starts_with(kList) && entry.key > key;
         });
}

class TextExpanderReader {
 public:
  Result<ImportData> read(const PropertyList& list, std::string_view fileName) {
    if (auto visited = visit(list, titleOfFile(fileName), {}); !visited) return visited.error();
    if (data_.snippets.empty() && data_.notices.empty())
      return Error{
          toUtf8(localized(u"The file holds no snippets: nothing in it has the keys “abbreviation” and "
                           u"“plainText”. Export a group of snippets and import that."))};
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
    if (isSnippet(list)) return addSnippet(list, folder, path);
    const auto group = groupName(list, path);
    if (!group) return group.error();
    const auto& folderWithin = group.value() ? *group.value() : folder;
    for (const auto& [key, value] : *dictionary) {
      if (isOutdated(key, *dictionary)) continue;
      if (auto visited = visit(value, folderWithin, {path, key}); !visited) return visited;
    }
    return {};
  }

  // Null where the dictionary is no named group.
  static Result<const std::u16string*> groupName(const PropertyList& list, const PropertyListPath& path) {
    const auto* const info = list.find("groupInfo");
    if (!info) return textAt(list, "groupName", path);
    if (!info->as<PropertyList::Dictionary>())
      return wrongKind(*info, {path, "groupInfo"}, localized(u"a dictionary"));
    return textAt(*info, "groupName", {path, "groupInfo"});
  }

  Status addSnippet(const PropertyList& list, const std::u16string& folder, const PropertyListPath& path) {
    const auto title = textAt(list, "label", path);
    const auto abbreviation = textAt(list, "abbreviation", path);
    const auto text = textAt(list, "plainText", path);
    const auto type = integerAt(list, "snippetType", path);
    if (!title) return title.error();
    if (!abbreviation) return abbreviation.error();
    if (!text) return text.error();
    if (!type) return type.error();

    ImportedSnippet snippet;
    if (title.value()) snippet.title = *title.value();
    if (abbreviation.value()) snippet.abbreviation = *abbreviation.value();
    if (text.value()) takeText(snippet, *text.value(), type.value().value_or(plain));
    takeData(snippet, *list.as<PropertyList::Dictionary>(), type.value().value_or(plain));
    if (snippet.text.empty()) {
      addNotice(snippet, localized(u"The snippet has no text and was left out."));
      return {};
    }
    snippet.folder = folders_.use(folder, data_);
    data_.snippets.push_back(std::move(snippet));
    return {};
  }

  void takeText(ImportedSnippet& snippet, std::u16string_view text, std::int64_t type) {
    if (isScript(type)) {
      auto literal = literalMacroText(text);
      snippet.text = AttributedString(std::move(literal.text));
      snippet.type = SnippetType::code;
      addNotice(snippet, localized(u"The snippet is a script. It was kept as code and will not run."));
      if (auto notice = literalNotice(literal.signs); !notice.empty()) addNotice(snippet, std::move(notice));
      return;
    }
    auto translated = translateTextExpanderMarkers(text);
    snippet.text = AttributedString(std::move(translated.text));
    for (auto& notice : translated.notices) addNotice(snippet, std::move(notice));
    if (type < plain || type > javaScript)
      addNotice(snippet,
                localized(u"The snippet is of a kind that is not known here. Only its text was kept."));
  }

  // No description says under which key pictures and formatting stand, so all data is looked at.
  void takeData(ImportedSnippet& snippet, const PropertyList::Dictionary& dictionary, std::int64_t type) {
    bool isFormatted = type == formatted;
    for (const auto& [key, value] : dictionary) {
      const auto* const bytes = value.as<PropertyList::Data>();
      if (!bytes) continue;
      const auto mediaType = imageMediaType(*bytes);
      if (mediaType.empty()) {
        isFormatted = true;
      } else {
        placePicture(snippet, *bytes, mediaType);
      }
    }
    if (isFormatted && snippet.type != SnippetType::image)
      addNotice(snippet, localized(u"Only the text was kept, without its formatting."));
  }

  void addNotice(const ImportedSnippet& snippet, std::u16string message) {
    data_.notices.push_back(
        {snippet.title.empty() ? snippet.abbreviation : snippet.title, std::move(message)});
  }

  ImportData data_;
  ImportedFolders folders_;
};

}  // namespace

Result<ImportData> readTextExpander(std::string_view bytes, std::string_view fileName) {
  const auto list = readPropertyList(bytes);
  if (!list) return list.error();
  return TextExpanderReader().read(list.value(), fileName);
}

}  // namespace quorlo
