#include "macros/dates/date_macro.h"

#include "base/localized.h"
#include "base/log.h"
#include "macros/dates/custom_date_format.h"
#include "macros/dates/date_and_time_formatter.h"
#include "macros/dates/date_arithmetic.h"
#include "macros/dates/date_macro_types.h"
#include "macros/macro_arguments.h"
#include "text/utf.h"

#include <optional>

namespace quorlo {
namespace {

using Format = DateAndTimeMacroDateFormat;

// The standard lengths are numbered as the formatter's styles are.
DateStyle styleOf(std::optional<Format> format) {
  return format && *format != Format::custom ? static_cast<DateStyle>(*format) : DateStyle::none;
}

// The text of a custom format given as the argument `name`; empty where there is none.
std::u16string customPart(std::u16string_view name, std::u16string_view macroString, Moment date,
                          DateAndTimeFormatter& formatter) {
  const auto format = valueForArgument(name, macroString);
  return format ? formatCustomDate(*format, date, formatter) : std::u16string();
}

}  // namespace

std::u16string renderDateMacro(std::u16string_view macroString, Moment date, DateOffset offset,
                               DateAndTimeFormatter& formatter) {
  const auto dateLength = valueForArgument(u"dateLength", macroString);
  const auto timeLength = valueForArgument(u"timeLength", macroString);
  if (!dateLength || !timeLength) return localized(u"Unsupported macro format");
  if (offset == DateOffset::apply) date = dateOfMacro(macroString, date, formatter);

  const auto dateFormat = dateAndTimeMacroDateFormat(*dateLength);
  if (!dateFormat) logWarning("WARNING: #f4rvcev " + userText(toUtf8(*dateLength)));
  const auto timeFormat = dateAndTimeMacroDateFormat(*timeLength);
  if (!timeFormat) logWarning("WARNING: #6hzrt6nn - " + userText(toUtf8(*timeLength)));

  std::u16string text;
  if (dateFormat == Format::custom) text = customPart(u"dateFormat", macroString, date, formatter);
  const auto styled = [&](DateStyle dateStyle, DateStyle timeStyle) {
    text += formatter.string(date, formatter.userContext(), dateStyle, timeStyle);
  };
  if (timeFormat == Format::custom) {
    styled(styleOf(dateFormat), DateStyle::none);
    text += customPart(u"timeFormat", macroString, date, formatter);
  } else {
    // Beside a custom date this is the time alone.
    styled(styleOf(dateFormat), styleOf(timeFormat));
  }
  return text;
}

Moment dateOfMacro(std::u16string_view macroString, Moment now, const DateAndTimeFormatter& formatter) {
  const auto math = valueForArgument(u"math", macroString);
  if (!math) return now;
  const auto mathType = valueForArgument(u"mathType", macroString).value_or(std::u16string());
  const auto unit = dateAndTimeMacroMathType(mathType);
  if (!unit) {
    logWarning("WARNING: #43fzuewin - " + userText(toUtf8(mathType)));
    return now;
  }
  const auto amount = readInteger(*math).value_or(0);
  return amount == 0 ? now : dateByAdding(amount, *unit, now, formatter.userContext());
}

}  // namespace quorlo
