#include "platform/environment/time_zone.h"

#include "text/utf.h"

#include <unicode/ucal.h>
#include <unicode/utypes.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace quorlo {

using std::chrono::milliseconds;

TimeZone::TimeZone(std::string name, OffsetAt offsetAt)
    : name_(std::move(name)), offsetAt_(std::move(offsetAt)) {}

std::chrono::seconds TimeZone::offsetAt(std::chrono::sys_time<milliseconds> moment) const {
  return offsetAt_(std::chrono::floor<std::chrono::seconds>(moment));
}

TimeZone::Moments TimeZone::momentsOf(std::chrono::local_time<milliseconds> local) const {
  const std::chrono::sys_time<milliseconds> asUtc(local.time_since_epoch());
  // No clock is more than a day away from UTC.
  const auto before = offsetAt(asUtc - std::chrono::days(1));
  const auto after = offsetAt(asUtc + std::chrono::days(1));
  const auto isShownWith = [&](std::chrono::seconds offset) { return offsetAt(asUtc - offset) == offset; };
  if (!isShownWith(before)) {
    const auto moment = asUtc - (isShownWith(after) ? after : before);
    return {moment, moment};
  }
  const auto first = asUtc - before;
  return {first, isShownWith(after) ? asUtc - after : first};
}

TimeZone icuTimeZone(const std::string& name) {
  const auto id = toUtf16(name);
  UErrorCode status = U_ZERO_ERROR;
  const std::shared_ptr<UCalendar> calendar(
      ucal_open(id.data(), static_cast<std::int32_t>(id.size()), "", UCAL_GREGORIAN, &status), ucal_close);
  if (U_FAILURE(status)) return {name, [](std::chrono::sys_seconds) { return std::chrono::seconds(0); }};
  return {name, [calendar](std::chrono::sys_seconds moment) {
            UErrorCode failure = U_ZERO_ERROR;
            const milliseconds time = moment.time_since_epoch();
            ucal_setMillis(calendar.get(), static_cast<UDate>(time.count()), &failure);
            const auto offset = ucal_get(calendar.get(), UCAL_ZONE_OFFSET, &failure) +
                                ucal_get(calendar.get(), UCAL_DST_OFFSET, &failure);
            return std::chrono::seconds(U_FAILURE(failure) ? 0 : offset / 1000);
          }};
}

}  // namespace quorlo
