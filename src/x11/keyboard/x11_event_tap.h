#pragma once

#include "platform/event_tap.h"

namespace quorlo {

class KeyboardService;

// Grabs the physical keyboards and passes their keys on by XTEST. Must outlive its port.
class X11EventTap : public EventTap {
 public:
  explicit X11EventTap(KeyboardService& keyboard) : keyboard_(keyboard) {}

  std::unique_ptr<Port> create(Callback callback, void* userInfo) override;

 private:
  KeyboardService& keyboard_;
};

}  // namespace quorlo
