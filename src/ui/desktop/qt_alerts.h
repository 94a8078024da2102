#pragma once

#include "platform/alerts.h"

namespace quorlo {

class TargetFocus;

// Message boxes: Return chooses the first button, Escape the last. They come to the front whatever is there
// and take the keyboard, since the user has asked for what they are about. Needs the QApplication.
class QtAlerts final : public Alerts {
 public:
  explicit QtAlerts(TargetFocus& focus) : focus_(focus) {}

  std::size_t runModal(const Alert& alert) override;

 private:
  TargetFocus& focus_;
};

}  // namespace quorlo
