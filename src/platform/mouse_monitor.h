#pragma once

#include "base/subscription.h"

#include <functional>

namespace quorlo {

// Left mouse button presses anywhere on the desktop, in other programs' windows too. Main thread.
class MouseMonitor {
 public:
  virtual ~MouseMonitor() = default;

  // Calls `handler` on the main thread for each press until the subscription ends. The click itself is
  // not affected.
  virtual Subscription observeLeftMouseDown(std::function<void()> handler) = 0;
};

}  // namespace quorlo
