#include "macros/dates/date_arithmetic.h"

#include "base/log.h"
#include "macros/dates/date_and_time_formatter.h"
#include "text/utf.h"

#include <unicode/localpointer.h>
#include <unicode/ucal.h>
#include <unicode/utypes.h>

#include <chrono>
#include <optional>
#include <string>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kReach = std::chrono::years(5'000'000);

struct Unit {
  milliseconds length;                       // on average, in the Gregorian calendar
  std::optional<UCalendarDateFields> field;  // none for those that count elapsed time
};

Unit unitOf(DateAndTimeMacroMathType type) {
  switch (type) {
    case DateAndTimeMacroMathType::seconds:
      return {std::chrono::seconds(1), {}};
    case DateAndTimeMacroMathType::minutes:
      return {std::chrono::minutes(1), {}};
    case DateAndTimeMacroMathType::hours:
      return {std::chrono::hours(1), {}};
    case DateAndTimeMacroMathType::days:
      return {std::chrono::days(1), UCAL_DATE};
    case DateAndTimeMacroMathType::months:
      return {std::chrono::months(1), UCAL_MONTH};
    case DateAndTimeMacroMathType::years:
      break;
  }
  return {std::chrono::years(1), UCAL_YEAR};
}

bool reaches(Moment moment, std::int64_t amount, milliseconds length) {
  const auto since1970 = moment.time_since_epoch();
  return amount <= (kReach - since1970) / length && amount >= (-kReach - since1970) / length;
}

icu::LocalUCalendarPointer open(const DateContext& context, UCalendarType type, UErrorCode& status) {
  const auto zone = toUtf16(context.timeZone);
  return icu::LocalUCalendarPointer(
      ucal_open(zone.data(), static_cast<std::int32_t>(zone.size()), context.locale.c_str(), type, &status));
}

}  // namespace

Moment dateByAdding(std::int64_t amount, DateAndTimeMacroMathType type, Moment moment,
                    const DateContext& context) {
  const auto unit = unitOf(type);
  if (amount == 0 || !reaches(moment, amount, unit.length)) return moment;
  if (!unit.field) return moment + amount * unit.length;

  UErrorCode status = U_ZERO_ERROR;
  const auto calendar = open(context, UCAL_DEFAULT, status);
  ucal_setMillis(calendar.getAlias(), static_cast<UDate>(moment.time_since_epoch().count()), &status);
  ucal_add(calendar.getAlias(), *unit.field, static_cast<std::int32_t>(amount), &status);
  const auto moved = ucal_getMillis(calendar.getAlias(), &status);
  if (U_FAILURE(status)) {
    logError(std::string("ERROR: No offset is added to a date; the ICU library says ") + u_errorName(status));
    return moment;
  }
  return Moment(milliseconds(static_cast<std::int64_t>(moved)));
}

Moment momentOfLocalTime(std::chrono::local_time<milliseconds> local, const DateContext& context) {
  const auto day = std::chrono::floor<std::chrono::days>(local);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(local - day);
  UErrorCode status = U_ZERO_ERROR;
  const auto calendar = open(context, UCAL_GREGORIAN, status);
  ucal_setAttribute(calendar.getAlias(), UCAL_REPEATED_WALL_TIME, UCAL_WALLTIME_FIRST);
  ucal_setDateTime(
      calendar.getAlias(), int{date.year()}, static_cast<std::int32_t>(unsigned{date.month()}) - 1,
      static_cast<std::int32_t>(unsigned{date.day()}), static_cast<std::int32_t>(time.hours().count()),
      static_cast<std::int32_t>(time.minutes().count()), static_cast<std::int32_t>(time.seconds().count()),
      &status);
  ucal_set(calendar.getAlias(), UCAL_MILLISECOND, static_cast<std::int32_t>(time.subseconds().count()));
  const auto moment = ucal_getMillis(calendar.getAlias(), &status);
  if (U_FAILURE(status)) {
    logError(std::string("ERROR: A date is taken for UTC; the ICU library says ") + u_errorName(status));
    return Moment(local.time_since_epoch());
  }
  return Moment(milliseconds(static_cast<std::int64_t>(moment)));
}

}  // namespace quorlo
