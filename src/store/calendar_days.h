#pragma once

#include "base/date.h"

#include <string>

namespace quorlo {

// The same time of day, `days` days earlier in the calendar of the time zone (an IANA name); a day may have
// 23 or 25 hours. UTC counts where the zone is unknown.
Date calendarDaysBefore(Date date, int days, const std::string& timeZone);

}  // namespace quorlo
