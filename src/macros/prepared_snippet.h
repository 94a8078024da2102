#pragma once

#include "platform/key_codes.h"
#include "text/attributed_string.h"
#include "text/text_range.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

struct KeyCombination {
  KeyCode keyCode = 0;
  ModifierFlags flags = 0;

  bool operator==(const KeyCombination&) const = default;
};

// The types of key steps that are not the name of a single key.
inline constexpr std::string_view kCombinationKey = "combi";
inline constexpr std::string_view kClipboardKey = "clipboard";
inline constexpr std::string_view kClipboardTextKey = "clipboardText";

// A key pressed between two pieces of a snippet.
struct KeyStep {
  TextRange range;  // its place in the snippet's text
  std::string type;
  std::optional<KeyCombination> combination = {};  // for the type "combi"

  bool operator==(const KeyStep&) const = default;
};

// A snippet's content ready to be inserted: macros replaced, cut at the keys to press. All lists are in
// text order; key n is pressed after piece n. A piece may be empty.
struct PreparedSnippet {
  AttributedString snippetText;
  std::vector<AttributedString> pieces;
  std::vector<KeyStep> keys;
  std::optional<TextRange> cursorRange;  // in snippetText
  std::size_t cursorPiece = 0;           // the piece that holds the cursor's place
};

}  // namespace quorlo
