#pragma once

#include <cstdint>
#include <functional>

namespace quorlo {

// Takes the keyboard away from the window that the user is typing in, and gives it back. Main thread.
class TargetFocus {
 public:
  using Completion = std::function<void(bool isActive)>;

  virtual ~TargetFocus() = default;

  // Remembers the window that has the focus now, and as the target the window that of all other applications
  // had it last: the same one, unless a window of this program is in front.
  virtual void remember() = 0;

  // Makes a window of this program, which is being shown, the active one. `window` is how the display
  // server names it.
  virtual void take(std::uintptr_t window) = 0;

  // Makes the remembered window the active one. The completion is called once, never inside the call: true
  // as soon as keys reach that window, false when it is gone, or not active within about 1 s.
  virtual void giveBack(Completion completion) = 0;
  // The same for the target: where text is to be inserted.
  virtual void giveToTarget(Completion completion) = 0;
};

}  // namespace quorlo
