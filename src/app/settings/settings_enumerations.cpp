#include "app/settings/settings_enumerations.h"

#include "base/localized.h"
#include "text/utf.h"

#include <algorithm>

namespace quorlo {

std::u16string displayString(AbbreviationTriggerType type) {
  return type == AbbreviationTriggerType::lastSymbol ? localized(u"Last symbol of an abbreviation")
                                                     : localized(u"Delimiter symbol or key");
}

std::u16string displayString(PreviewWindowPosition position) {
  return position == PreviewWindowPosition::nextToCursor ? localized(u"Next to the cursor")
                                                         : localized(u"Center of screen");
}

std::u16string displayString(SnippetSortOption option) {
  switch (option) {
    case SnippetSortOption::title:
      return localized(u"Title");
    case SnippetSortOption::creationDate:
      return localized(u"Creation Date");
    case SnippetSortOption::modificationDate:
      return localized(u"Modification Date");
    case SnippetSortOption::abbreviation:
      return localized(u"Abbreviation");
    case SnippetSortOption::type:
      return localized(u"Type");
    case SnippetSortOption::useCount:
      return localized(u"Popularity");
  }
  return {};
}

std::string_view rawValue(SnippetExpansionSound sound) {
  switch (sound) {
    case SnippetExpansionSound::custom:
      return "Custom";
    case SnippetExpansionSound::magnet:
      return "Magnet";
    case SnippetExpansionSound::brow:
      return "Brow";
    case SnippetExpansionSound::fairy:
      return "Fairy";
    case SnippetExpansionSound::siFi:
      return "SiFi";
    case SnippetExpansionSound::tap:
      return "Tap";
  }
  return {};
}

std::u16string displayString(SnippetExpansionSound sound) {
  return localized(toUtf16(rawValue(sound)));
}

std::optional<SnippetExpansionSound> snippetExpansionSound(std::string_view raw) {
  const auto found = std::ranges::find(kSnippetExpansionSounds, raw,
                                       [](SnippetExpansionSound each) { return rawValue(each); });
  return found == kSnippetExpansionSounds.end() ? std::nullopt : std::optional(*found);
}

}  // namespace quorlo
