#include "store/calendar_days.h"

#include "base/log.h"
#include "text/utf.h"

#include <unicode/localpointer.h>
#include <unicode/ucal.h>
#include <unicode/utypes.h>

#include <chrono>
#include <cstdint>

namespace quorlo {

using std::chrono::milliseconds;

Date calendarDaysBefore(Date date, int days, const std::string& timeZone) {
  const auto zone = toUtf16(timeZone);
  const auto moment = std::chrono::floor<milliseconds>(date);
  UErrorCode status = U_ZERO_ERROR;
  const icu::LocalUCalendarPointer calendar(
      ucal_open(zone.data(), static_cast<std::int32_t>(zone.size()), "", UCAL_GREGORIAN, &status));
  ucal_setMillis(calendar.getAlias(), static_cast<UDate>(moment.time_since_epoch().count()), &status);
  ucal_add(calendar.getAlias(), UCAL_DATE, -days, &status);
  const auto moved = ucal_getMillis(calendar.getAlias(), &status);
  if (U_FAILURE(status)) {
    logError(std::string("ERROR: #cdb4Kq2 - Days are counted by 24 hours; the ICU library says ") +
             u_errorName(status));
    return date - std::chrono::days(days);
  }
  return date + (milliseconds(static_cast<std::int64_t>(moved)) - moment.time_since_epoch());
}

}  // namespace quorlo
