#include "macros/dates/date_arithmetic.h"

#include "base/log.h"
#include "macros/dates/date_and_time_formatter.h"

#include <unicode/localpointer.h>
#include <unicode/ucal.h>
#include <unicode/utypes.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {
namespace {

using std::chrono::milliseconds;
using LocalTime = std::chrono::local_time<milliseconds>;

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

// In the calendar of a language, on a clock that is never set. Absent where the calendar does not reach.
std::optional<LocalTime> localTimeByAdding(std::int64_t amount, UCalendarDateFields field, LocalTime local,
                                           const std::string& locale) {
  constexpr std::u16string_view kNeverSet = u"GMT";
  UErrorCode status = U_ZERO_ERROR;
  const icu::LocalUCalendarPointer calendar(ucal_open(
      kNeverSet.data(), static_cast<std::int32_t>(kNeverSet.size()), locale.c_str(), UCAL_DEFAULT, &status));
  ucal_setMillis(calendar.getAlias(), static_cast<UDate>(local.time_since_epoch().count()), &status);
  ucal_add(calendar.getAlias(), field, static_cast<std::int32_t>(amount), &status);
  const auto moved = ucal_getMillis(calendar.getAlias(), &status);
  if (U_FAILURE(status)) {
    logError(std::string("ERROR: No offset is added to a date; the ICU library says ") + u_errorName(status));
    return std::nullopt;
  }
  return LocalTime(milliseconds(static_cast<std::int64_t>(moved)));
}

}  // namespace

Moment dateByAdding(std::int64_t amount, DateAndTimeMacroMathType type, Moment moment,
                    const DateContext& context) {
  const auto unit = unitOf(type);
  if (amount == 0 || !reaches(moment, amount, unit.length)) return moment;
  if (!unit.field) return moment + amount * unit.length;

  const auto& zone = context.timeZone;
  const auto offset = zone.offsetAt(moment);
  const auto moved =
      localTimeByAdding(amount, *unit.field, LocalTime(moment.time_since_epoch() + offset), context.locale);
  if (!moved) return moment;
  const auto [first, last] = zone.momentsOf(*moved);
  // An hour that comes twice is the one before the change for days from before it.
  return *unit.field == UCAL_DATE && zone.offsetAt(first) == offset ? first : last;
}

Moment momentOfLocalTime(LocalTime local, const DateContext& context) {
  return context.timeZone.momentsOf(local).first;
}

}  // namespace quorlo
