#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// A text of a "textexpander" file with this program's macros in place of its markers.
struct TranslatedText {
  std::u16string text;
  std::vector<std::u16string> notices;  // what could not be kept as it was, in words for the user; each once
};

// The markers that are known are in docs/formats.md. One without a counterpart stays text and is listed; a
// percent sign that begins none stays one. Linear in the text.
TranslatedText translateTextExpanderMarkers(std::u16string_view text);

}  // namespace quorlo
