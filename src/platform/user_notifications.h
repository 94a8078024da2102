#pragma once

#include "platform/main_queue.h"

#include <functional>
#include <string>

namespace quorlo {

struct UserNotification {
  std::u16string title;
  std::u16string body;
  std::string categoryIdentifier;
  std::u16string actionTitle;  // one action button; empty for none
  Seconds delay{0};
};

// Notifications of the desktop. Main thread.
class UserNotifications {
 public:
  // `categoryIdentifier` of the notification whose action was chosen.
  using ActionHandler = std::function<void(const std::string& categoryIdentifier)>;

  virtual ~UserNotifications() = default;

  // Silently lost where the desktop shows none.
  virtual void post(UserNotification notification) = 0;
  // Each handler is told of every action.
  virtual void addActionHandler(ActionHandler handler) = 0;
};

}  // namespace quorlo
