#pragma once

#include "platform/alerts.h"

namespace quorlo {

// Message boxes. Needs the QApplication.
class QtAlerts final : public Alerts {
 public:
  std::size_t runModal(const Alert& alert) override;
};

}  // namespace quorlo
