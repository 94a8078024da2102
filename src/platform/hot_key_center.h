#pragma once

#include "base/result.h"
#include "base/subscription.h"
#include "platform/key_codes.h"

#include <functional>

namespace quorlo {

// Key combinations that call back whatever application is in front. Main thread.
class HotKeyCenter {
 public:
  virtual ~HotKeyCenter() = default;

  // Until the subscription ends, the combination calls `pressed` on the main thread and reaches no
  // application. An error when another program holds the combination or the layout has no such key.
  virtual Result<Subscription> registerHotKey(KeyCode code, ModifierFlags flags,
                                              std::function<void()> pressed) = 0;
};

}  // namespace quorlo
