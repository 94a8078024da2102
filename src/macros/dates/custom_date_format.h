#pragma once

#include "macros/dates/moment.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorlo {

class DateAndTimeFormatter;

// A custom date format is text in which a date field is a percent sign and a run of one letter, with the
// meaning that UTS #35 gives to that run in a date pattern: "%dd.%MM." for day and month. A run of the digit
// 1 stands for a colon and one of the digit 2 for a question mark, which a macro's value cannot hold. A
// percent sign takes any other character as well: "%%" is a percent sign. Everything else is literal.

// A field in a format, as the format's editor shows it.
struct QLDateToken {
  std::u16string representedString;  // the percent sign and the run, for example u"%MMMM"

  bool operator==(const QLDateToken&) const = default;
};

// A stand-in for a character that a macro's value cannot hold: u"%1111" or u"%2222".
struct PlainDateToken {
  std::u16string representedString;

  bool operator==(const PlainDateToken&) const = default;
};

using CustomDateFormatPiece = std::variant<std::u16string, PlainDateToken, QLDateToken>;

// The format in pieces, for its editor; no two literal texts stand side by side.
std::vector<CustomDateFormatPiece> tokenizeCustomDateFormat(std::u16string_view format);

// The date in a custom format, in the user's first language and time zone. A time with 24 hours (%H) has
// Western digits in every language, its minutes and seconds too. A letter that is no date field writes
// nothing.
std::u16string formatCustomDate(std::u16string_view format, Moment date, DateAndTimeFormatter& formatter);

}  // namespace quorlo
