#include "x11/x11_accessibility_trust.h"

#include "x11/keyboard_service.h"
#include "x11/x_connection.h"

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

}  // namespace quorlo
