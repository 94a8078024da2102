#pragma once

#include "platform/user_notifications.h"

#include <utility>
#include <vector>

namespace quorlo {

class FakeUserNotifications : public UserNotifications {
 public:
  void post(UserNotification notification) override { posted.push_back(std::move(notification)); }
  void addActionHandler(ActionHandler handler) override { handlers_.push_back(std::move(handler)); }

  // The user presses the button of the last notification.
  void chooseAction() const {
    if (posted.empty()) return;
    for (const auto& handler : handlers_) handler(posted.back().categoryIdentifier);
  }

  std::vector<UserNotification> posted;

 private:
  std::vector<ActionHandler> handlers_;
};

}  // namespace quorlo
