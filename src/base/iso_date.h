#pragma once

#include "base/date.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// Moments as ISO 8601 writes them.

// In UTC with milliseconds: "2026-11-22T01:02:03.456Z".
std::string isoDate(Date moment);

// What stands on the calendar and the clock, and how far that is from UTC where it is said.
struct IsoDateTime {
  std::chrono::local_time<std::chrono::milliseconds> local;
  std::optional<std::chrono::minutes> offset;
};

// "2026-11-22", "2026-11-22T01:02", with seconds and their fraction, with "Z" or an offset such as "+01:00";
// a space may stand for the "T". Without a time it is midnight. Absent for anything else, and for a day that
// the calendar does not have.
std::optional<IsoDateTime> readIsoDateTime(std::string_view text);

// The moment itself; what has no offset is taken for UTC. Absent where Date does not reach.
std::optional<Date> readIsoDate(std::string_view text);

}  // namespace quorlo
