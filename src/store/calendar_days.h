#pragma once

#include "base/date.h"

namespace quorlo {

class TimeZone;

// The same time of day, `days` days earlier in the time zone; a day may have 23 or 25 hours.
Date calendarDaysBefore(Date date, int days, const TimeZone& zone);

}  // namespace quorlo
