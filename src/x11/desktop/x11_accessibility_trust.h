#pragma once

#include "platform/accessibility_trust.h"

namespace quorlo {

class KeyboardService;
class XConnection;

// An X server trusts every program that may connect; what can be missing is the means to watch and to post
// keys, or the server itself.
class X11AccessibilityTrust : public AccessibilityTrust {
 public:
  X11AccessibilityTrust(const XConnection& x, KeyboardService& keyboard) : x_(x), keyboard_(keyboard) {}

  bool isProcessTrusted() const override;
  std::vector<AccessibilityObstacle> obstacles() const override;
  Subscription observeObstacles(std::function<void()> changed) override;

 private:
  const XConnection& x_;
  KeyboardService& keyboard_;
};

}  // namespace quorlo
