#include "store/calendar_days.h"

#include "platform/environment/time_zone.h"

#include <chrono>

namespace quorlo {

Date calendarDaysBefore(Date date, int days, const TimeZone& zone) {
  using std::chrono::milliseconds;
  const auto moment = std::chrono::floor<milliseconds>(date);
  const std::chrono::local_time<milliseconds> local(moment.time_since_epoch() + zone.offsetAt(moment));
  return date + (zone.momentsOf(local - std::chrono::days(days)).last - moment);
}

}  // namespace quorlo
