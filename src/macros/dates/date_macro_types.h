#pragma once

#include <optional>
#include <string_view>

namespace quorlo {

// How a date macro writes its date or its time. The first five are the standard lengths of the Unicode CLDR,
// numbered as styles from 0 to 4. Raw values: "none", "short", "medium", "long", "full", "custom".
enum class DateAndTimeMacroDateFormat { none, shortFormat, mediumFormat, longFormat, fullFormat, custom };

// The unit of a date macro's offset; the raw values are the names.
enum class DateAndTimeMacroMathType { seconds, minutes, hours, days, months, years };

std::optional<DateAndTimeMacroDateFormat> dateAndTimeMacroDateFormat(std::u16string_view rawValue);
std::optional<DateAndTimeMacroMathType> dateAndTimeMacroMathType(std::u16string_view rawValue);

}  // namespace quorlo
