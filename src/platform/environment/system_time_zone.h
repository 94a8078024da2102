#pragma once

#include "platform/environment/time_zone.h"

namespace quorlo {

// The time zone of this process by the rules of the system: those of the variable TZ, which may also be a
// POSIX rule or a file, or of /etc/localtime, as they are at the time of the call. The process must not
// change TZ on another thread.
TimeZone systemTimeZone();

}  // namespace quorlo
