#pragma once

#include "platform/main_queue.h"

#include <functional>

namespace quorlo {

// Lets Qt's event loop run until the condition holds, 5 s at most; whether it holds.
bool runEventLoopUntil(const std::function<bool()>& condition);
void runEventLoopFor(Seconds time);

}  // namespace quorlo
