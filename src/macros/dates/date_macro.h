#pragma once

#include "macros/dates/moment.h"

#include <string>
#include <string_view>

namespace quorlo {

class DateAndTimeFormatter;

// Whether `math` and `mathType` of a date macro move the date given with it.
enum class DateOffset { ignore, apply };

// The text that a date macro (its whole markup) stands for, in the user's first language and time zone. The
// macro names a length for the date and one for the time; two custom formats, or one beside a style, are
// joined without anything between them. Unknown lengths are logged and left out; a macro without one of
// the two lengths reads as the localised "Unsupported macro format".
std::u16string renderDateMacro(std::u16string_view macroString, Moment date, DateOffset offset,
                               DateAndTimeFormatter& formatter);

// `now` moved by the macro's offset in the user's calendar and time zone: months and years keep to the last
// day of a shorter month, days and longer units keep the time on the clock, shorter ones count elapsed time.
// An offset that is no number, or that leads out of the calendar, counts as 0; an unknown unit is logged
// and leaves the date.
Moment dateOfMacro(std::u16string_view macroString, Moment now, const DateAndTimeFormatter& formatter);

}  // namespace quorlo
