#pragma once

#include "macros/dates/date_macro_types.h"
#include "macros/dates/moment.h"

#include <chrono>
#include <cstdint>

namespace quorlo {

struct DateContext;

// `moment` moved by `amount` units in the calendar of the context's language and in its time zone, without
// wrapping: 31 January and one month is the last day of February. Days, months and years keep the time on
// the clock (one that a change to daylight-saving time skips becomes the same time after the change);
// seconds, minutes and hours count elapsed time. Where the result would lie more than five million years
// from 1970, which calendars do not reach, the moment is returned as it is.
Moment dateByAdding(std::int64_t amount, DateAndTimeMacroMathType unit, Moment moment,
                    const DateContext& context);

// The moment at which the Gregorian calendar and the clock in the context's time zone show `local`; of two
// such moments the first, and where a change of the clock skips it, that which the clock would have shown
// without.
Moment momentOfLocalTime(std::chrono::local_time<std::chrono::milliseconds> local,
                         const DateContext& context);

}  // namespace quorlo
