#pragma once

#include "macros/dates/date_macro_types.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// The date markers of "textexpander" files: "%" and a letter as strftime has them, or "%1" and a letter for
// the same without a leading zero. docs/formats.md has them all.

// The marker that a text begins with, as a field of a custom date format ("%MM").
struct DateMarker {
  std::size_t length = 0;
  std::u16string_view field;
  bool isTime = false;
};
std::optional<DateMarker> dateMarkerAt(std::u16string_view text);

// How far the dates behind it are moved: "%@+1D".
struct DateOffsetMarker {
  std::size_t length = 0;
  std::int64_t amount = 0;
  DateAndTimeMacroMathType unit = DateAndTimeMacroMathType::days;
};
std::optional<DateOffsetMarker> dateOffsetMarkerAt(std::u16string_view text);

// Both in one unit of a date macro; absent when no unit measures both, as with a month and a day.
std::optional<DateOffsetMarker> sum(DateOffsetMarker first, DateOffsetMarker second);

// Date markers that stand together, as one macro: what is between them is part of its format.
class DateMacroBuilder {
 public:
  bool isEmpty() const { return format_.empty(); }

  void append(const DateMarker& marker);

  // Whether the literal text may stand inside a format; if so it is part of the macro once another marker
  // follows.
  static bool isSeparator(std::u16string_view text);
  void appendSeparator(std::u16string_view text);

  // The macro; this is empty then.
  std::u16string take(const std::optional<DateOffsetMarker>& offset);

 private:
  std::u16string format_;
  bool isTime_ = true;  // no part of it is a date
};

}  // namespace quorlo
