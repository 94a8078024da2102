#pragma once

#include "base/date.h"

#include <chrono>

namespace quorlo {

// A moment that a date macro may name. Date ends in the year 2262, and an offset may lead further.
using Moment = std::chrono::sys_time<std::chrono::milliseconds>;

inline Moment momentOf(Date date) {
  return std::chrono::floor<std::chrono::milliseconds>(date);
}

}  // namespace quorlo
