#pragma once

namespace quorlo {

enum class ActivationPolicy {
  regular,    // with windows in the task bar
  accessory,  // tray only
};

// This program's own windows. Main thread.
class OwnApplication {
 public:
  virtual ~OwnApplication() = default;

  virtual bool hasVisibleWindows() const = 0;
  // Hides every window; the application that was active before becomes active again.
  virtual void hide() = 0;
  // Shows the windows that hide() hid.
  virtual void unhide() = 0;
  virtual ActivationPolicy activationPolicy() const = 0;
  virtual void setActivationPolicy(ActivationPolicy policy) = 0;
};

}  // namespace quorlo
