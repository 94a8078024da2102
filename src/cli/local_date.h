#pragma once

#include "base/date.h"

#include <string>

namespace quorlo {

// On the clock of this machine: "2026-11-22 01:02".
std::string localDate(Date moment);
// "2026-11-22 01:02:03".
std::string localDateAndTime(Date moment);

}  // namespace quorlo
