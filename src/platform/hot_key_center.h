#pragma once

#include "base/result.h"
#include "base/subscription.h"
#include "platform/shortcut.h"

#include <functional>

namespace quorlo {

// Key combinations that call back whatever application is in front. Main thread.
class HotKeyCenter {
 public:
  virtual ~HotKeyCenter() = default;

  // Until the subscription ends, the combination calls `pressed` on the main thread, once for each press
  // however long the key is held, and reaches no application. It stays registered when the keyboard or its
  // layout changes. An error, in words for the user that name the combination, when it is registered
  // already, another program holds it, or the keyboard has no such key.
  virtual Result<Subscription> registerHotKey(Shortcut shortcut, std::function<void()> pressed) = 0;

  // While the subscription lives, no combination calls back and all reach the applications: for a field
  // in which the user presses a new one.
  virtual Subscription suspend() = 0;
};

}  // namespace quorlo
