#pragma once

#include "macros/dates/date_macro.h"
#include "macros/dates/moment.h"
#include "macros/fill_in_macros.h"
#include "macros/macro_type.h"
#include "macros/prepared_snippet.h"
#include "text/attributed_string.h"
#include "text/text_range.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace quorlo {

// A text whose macros are replaced by what they stand for. Keys and cursor leave nothing in the text:
// their ranges are empty.
struct EvaluatedText {
  AttributedString text;
  std::vector<KeyStep> keys = {};  // in text order
  std::optional<TextRange> cursorRange = {};
  std::size_t keysBeforeCursor = 0;
};

// What the macros of a text are replaced by.
struct MacroValues {
  // Of fillInMacros of the same text. A macro without one takes its default.
  FillInAnswers answers = {};

  // Where it is given, clipboard macros are replaced by it; otherwise they are keys to be pressed, since
  // the clipboard may hold what no text can.
  std::optional<AttributedString> clipboard = {};

  Moment now = {};

  // Renders a date macro.
  std::function<std::u16string(std::u16string_view macroString, Moment date, DateOffset offset)> renderDate;
};

// Replaces the macros of the given types in one pass; the others stay as they are. A replacement takes
// the attributes of its macro's first character. Of several cursors the last one counts. What cannot be
// evaluated (a snippet macro that is left, a key that names none) is removed with a warning.
EvaluatedText evaluateMacros(const AttributedString& text, std::span<const MacroType> types,
                             const MacroValues& values);

}  // namespace quorlo
