#pragma once

#include "platform/own_application.h"

#include <utility>

namespace quorlo {

// A program with one window that may be open.
class FakeOwnApplication : public OwnApplication {
 public:
  bool hasVisibleWindows() const override { return windowIsOpen_ && !hidden_; }
  void hide() override { hidden_ = true; }
  void unhide() override { hidden_ = false; }
  ActivationPolicy activationPolicy() const override { return policy_; }
  void setActivationPolicy(ActivationPolicy policy) override { policy_ = policy; }

  void openWindow() { windowIsOpen_ = true; }
  void closeWindow() { windowIsOpen_ = false; }

 private:
  bool windowIsOpen_ = false;
  bool hidden_ = false;
  ActivationPolicy policy_ = ActivationPolicy::accessory;
};

}  // namespace quorlo
