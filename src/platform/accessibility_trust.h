#pragma once

#include "base/subscription.h"

#include <functional>
#include <vector>

namespace quorlo {

// What can keep this process from watching and posting keys.
enum class AccessibilityObstacle {
  displayIsLost,
  waylandSession,  // the X server serves some windows only; keys typed in the others are nobody's business
  noXInput2,       // the X server lacks the extension
  noXtest,
  noXkb,
  // These pass by themselves or with the program that is in the way: they leave the process trusted.
  keyboardsAreTaken,      // another program has grabbed all keyboards
  noKeyboard,             // none is plugged in
  watchingIsInterrupted,  // it was given up and is tried again
};

// Whether the system lets this process watch and post keys. Main thread.
class AccessibilityTrust {
 public:
  virtual ~AccessibilityTrust() = default;

  // Asked afresh each time; shows nothing to the user.
  virtual bool isProcessTrusted() const = 0;

  // What stands in the way now, for the user to read; empty when all is well.
  virtual std::vector<AccessibilityObstacle> obstacles() const = 0;

  // Called on the main thread when they may be others.
  virtual Subscription observeObstacles(std::function<void()> changed) = 0;
};

}  // namespace quorlo
