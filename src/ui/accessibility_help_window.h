#pragma once

#include <memory>

namespace quorlo {

class AccessibilityTrust;
class TargetFocus;

// Stands in for the system's accessibility settings, which an X11 desktop does not have: what keeps Quorlo
// from watching and pressing keys now, and what the user can do about it. Needs the QApplication.
class AccessibilityHelpWindow {
 public:
  // The references must outlive the window.
  AccessibilityHelpWindow(const AccessibilityTrust& trust, TargetFocus& focus);
  ~AccessibilityHelpWindow();

  // Opens the window or brings it to the front. Being asked a second time within 2 s is the same wish once
  // more: a window that the user has closed by then stays closed.
  void open();

 private:
  class Window;

  std::unique_ptr<Window> window_;
};

}  // namespace quorlo
