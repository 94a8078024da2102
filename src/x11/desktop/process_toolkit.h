#pragma once

#include "platform/insertion/toolkit.h"

#include <cstdint>
#include <string_view>

namespace quorlo {

// By the libraries that a process has in memory, as /proc/PID/maps lists them.
Toolkit toolkitOfMaps(std::string_view maps);

// Reads about 100 KB. Unknown for a process that is gone or another user's.
Toolkit toolkitOfProcess(std::int64_t process);

}  // namespace quorlo
