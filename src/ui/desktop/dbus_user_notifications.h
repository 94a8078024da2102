#pragma once

#include "platform/user_notifications.h"

#include <memory>

namespace quorlo {

class MainQueue;
class NotificationServer;

// Notifications of the desktop (freedesktop.org, Desktop Notifications). The session bus is met
// at the first notification; without a bus or a server, notifications are lost. Needs the QCoreApplication.
class DBusUserNotifications final : public UserNotifications {
 public:
  explicit DBusUserNotifications(MainQueue& queue);
  ~DBusUserNotifications() override;

  void post(UserNotification notification) override;
  void addActionHandler(ActionHandler handler) override;

 private:
  MainQueue& queue_;
  std::shared_ptr<NotificationServer> server_;
};

}  // namespace quorlo
