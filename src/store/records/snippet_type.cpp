#include "store/records/snippet_type.h"

#include "base/localized.h"
#include "store/localized_format.h"

#include <algorithm>

namespace quorlo {

std::optional<SnippetType> snippetType(std::int64_t rawValue) {
  const auto found = std::ranges::find(kSnippetTypes, rawValue,
                                       [](SnippetType each) { return static_cast<std::int64_t>(each); });
  return found == kSnippetTypes.end() ? std::nullopt : std::optional(*found);
}

std::u16string displayName(SnippetType type) {
  switch (type) {
    case SnippetType::plainText:
      return localized(u"Plain Text");
    case SnippetType::formatted:
      return localized(u"Formatted");
    case SnippetType::image:
      return localized(u"Image");
    case SnippetType::code:
      return localized(u"Code");
  }
  return {};
}

std::string_view symbolName(SnippetType type) {
  switch (type) {
    case SnippetType::plainText:
      return "text.justify.left";
    case SnippetType::formatted:
      return "paintbrush";
    case SnippetType::image:
      return "photo";
    case SnippetType::code:
      return "chevron.left.forwardslash.chevron.right";
  }
  return {};
}

std::u16string imageCountLabel(std::size_t count) {
  return localizedCount(static_cast<std::int64_t>(count), u"1 image", u"%d images");
}

}  // namespace quorlo
