#pragma once

#include "base/subscription.h"

#include <functional>

namespace quorlo {

enum class MouseButton { left, other };

// Presses of mouse buttons anywhere on the desktop, in other programs' windows too. Main thread.
class MouseMonitor {
 public:
  virtual ~MouseMonitor() = default;

  // Calls `handler` on the main thread for each press until the subscription ends; turning the wheel is none.
  // The click itself is not affected.
  virtual Subscription observeMouseDown(std::function<void(MouseButton)> handler) = 0;
};

}  // namespace quorlo
