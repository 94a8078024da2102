#pragma once

#include "store/records/abbreviation_trigger_type.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// Choices of the user that are stored as their raw values, and what the settings show for them.

inline constexpr std::array kAbbreviationTriggerTypes{AbbreviationTriggerType::lastSymbol,
                                                      AbbreviationTriggerType::delimiterKey};
std::u16string displayString(AbbreviationTriggerType type);

// Where the fill-in window opens.
enum class PreviewWindowPosition { nextToCursor = 2, centerOfScreen = 4 };
inline constexpr std::array kPreviewWindowPositions{PreviewWindowPosition::nextToCursor,
                                                    PreviewWindowPosition::centerOfScreen};
std::u16string displayString(PreviewWindowPosition position);

enum class SnippetSortOption {
  title = 0,
  creationDate = 10,
  modificationDate = 20,
  abbreviation = 30,
  type = 40,
  useCount = 50,
};
inline constexpr std::array kSnippetSortOptions{
    SnippetSortOption::title,        SnippetSortOption::creationDate, SnippetSortOption::modificationDate,
    SnippetSortOption::abbreviation, SnippetSortOption::type,         SnippetSortOption::useCount,
};
std::u16string displayString(SnippetSortOption option);

// The sound of an expansion. Its raw value is also its display string and the name of the built-in
// sound.
enum class SnippetExpansionSound { custom, magnet, brow, fairy, siFi, tap };
inline constexpr std::array kSnippetExpansionSounds{
    SnippetExpansionSound::custom, SnippetExpansionSound::magnet, SnippetExpansionSound::brow,
    SnippetExpansionSound::fairy,  SnippetExpansionSound::siFi,   SnippetExpansionSound::tap,
};
std::string_view rawValue(SnippetExpansionSound sound);
std::u16string displayString(SnippetExpansionSound sound);
std::optional<SnippetExpansionSound> snippetExpansionSound(std::string_view rawValue);

}  // namespace quorlo
