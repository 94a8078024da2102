#include "x11/desktop/x11_accessibility_trust.h"

#include "x11/connection/x_connection.h"
#include "x11/keyboard/keyboard_service.h"

namespace quorlo {

bool X11AccessibilityTrust::isProcessTrusted() const {
  x_.sync();
  return !x_.lost() && keyboard_.isUsable();
}

std::vector<AccessibilityObstacle> X11AccessibilityTrust::obstacles() const {
  x_.sync();
  if (x_.lost()) return {AccessibilityObstacle::displayIsLost};
  return keyboard_.obstacles();
}

Subscription X11AccessibilityTrust::observeObstacles(std::function<void()> changed) {
  return keyboard_.observeObstacles(std::move(changed));
}

}  // namespace quorlo
