#pragma once

namespace quorlo {

// Whether the system lets this process watch and post keys. Main thread.
class AccessibilityTrust {
 public:
  virtual ~AccessibilityTrust() = default;

  // Asked afresh each time; shows nothing to the user.
  virtual bool isProcessTrusted() const = 0;
};

}  // namespace quorlo
