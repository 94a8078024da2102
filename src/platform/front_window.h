#pragma once

#include <cstdint>

namespace quorlo {

// The window that keys reach: those of the user and those that this program posts. Main thread.
class FrontWindow {
 public:
  using Id = std::uintptr_t;  // 0 for none

  virtual ~FrontWindow() = default;

  // The one that the user types in, as the last key was judged. Costs no round trip.
  virtual Id current() const = 0;

  // Asks the display server anew whether keys still reach the window, and no other program has the keyboard
  // for itself. While no window has the keyboard,
  // as when a window manager is replaced, they do as long as the window is on the screen. Always true for 0.
  virtual bool isStill(Id window) const = 0;
};

}  // namespace quorlo
