#pragma once

#include "text/attributed_string.h"

#include <compare>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>

namespace quorlo {

// The text of the snippet with an abbreviation; absent when there is none. Where several snippets have
// it, a live one is to be preferred to one in the trash.
using SnippetLookup = std::function<std::optional<AttributedString>(const std::u16string& abbreviation)>;

// How many passes follow the first: snippets are nested through three levels.
inline constexpr int kNestedSnippetDepth = 2;

// A snippet that a macro names and that the text is without.
struct LeftOutSnippet {
  enum class Reason { missing, wouldContainItself, textIsTooLong, isTooDeep };

  std::u16string abbreviation;
  Reason reason;

  auto operator<=>(const LeftOutSnippet&) const = default;
};
using LeftOutSnippets = std::set<LeftOutSnippet>;

// Replaces the snippet macros of a text by the snippets they name, pass by pass over the whole text.
// `used` holds the abbreviations that the text itself came from.
//
// A snippet never comes to stand inside itself, directly or through others, but may stand twice side by
// side; a macro that would break this is removed with a warning; one that names no snippet is
// removed without.
// Macros that appear after the last pass stay. What would make the text longer than
// kLongestResolvedText is left out with a warning. Each is added to `leftOut`, which may be null.
AttributedString resolveSnippetMacros(AttributedString text, const std::set<std::u16string>& used, int depth,
                                      const SnippetLookup& lookup, LeftOutSnippets* leftOut = nullptr);

inline constexpr std::size_t kLongestResolvedText = std::size_t{1} << 24;  // UTF-16 units

}  // namespace quorlo
