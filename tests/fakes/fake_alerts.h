#pragma once

#include "platform/alerts.h"

#include <deque>
#include <functional>

namespace quorlo {

// Keeps the alerts shown; a user who chooses what the test queued, else closes the alert.
class FakeAlerts : public Alerts {
 public:
  std::size_t runModal(const Alert& alert) override {
    shown.push_back(alert);
    if (whileOpen) whileOpen();
    if (choices.empty()) return alert.buttons.size() - 1;
    const auto choice = choices.front();
    choices.pop_front();
    return choice;
  }

  std::vector<Alert> shown;
  std::deque<std::size_t> choices;
  std::function<void()> whileOpen;  // what happens while an alert waits
};

}  // namespace quorlo
