#pragma once

#include "platform/user_notifications.h"

#include <utility>
#include <vector>

namespace quorlo {

class FakeUserNotifications : public UserNotifications {
 public:
  void post(UserNotification notification) override { posted.push_back(std::move(notification)); }
  void setActionHandler(ActionHandler handler) override { handler_ = std::move(handler); }

  // The user presses the button of the last notification.
  void chooseAction() const {
    if (handler_ && !posted.empty()) handler_(posted.back().categoryIdentifier);
  }

  std::vector<UserNotification> posted;

 private:
  ActionHandler handler_;
};

}  // namespace quorlo
