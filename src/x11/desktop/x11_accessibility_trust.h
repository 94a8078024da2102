#pragma once

#include "platform/accessibility_trust.h"

namespace quorlo {

class KeyboardService;
class XConnection;

// An X server trusts every program that may connect; what can be missing is the means to watch and to post
// keys, or the server itself.
class X11AccessibilityTrust : public AccessibilityTrust {
 public:
  X11AccessibilityTrust(const XConnection& x, const KeyboardService& keyboard) : x_(x), keyboard_(keyboard) {}

  bool isProcessTrusted() const override;
  std::vector<AccessibilityObstacle> obstacles() const override;

 private:
  const XConnection& x_;
  const KeyboardService& keyboard_;
};

}  // namespace quorlo
