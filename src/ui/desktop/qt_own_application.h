#pragma once

#include "platform/own_application.h"

#include <memory>

namespace quorlo {

// The top-level windows of the QApplication.
class QtOwnApplication final : public OwnApplication {
 public:
  QtOwnApplication();
  ~QtOwnApplication() override;

  bool hasVisibleWindows() const override;
  // The window manager gives the focus back to the window that had it before ours.
  void hide() override;
  void unhide() override;
  ActivationPolicy activationPolicy() const override { return policy_; }
  // Only remembered: on Linux a program has a place in the task bar exactly while it shows windows.
  void setActivationPolicy(ActivationPolicy policy) override { policy_ = policy; }

 private:
  struct HiddenWindows;

  std::unique_ptr<HiddenWindows> hidden_;
  ActivationPolicy policy_ = ActivationPolicy::accessory;
};

}  // namespace quorlo
