#pragma once

#include "platform/user_notifications.h"

#include <QObject>
#include <QString>

#include <map>
#include <string>
#include <vector>

namespace quorlo {

// The notification server of the session bus, and which of our notifications are on the screen. The bus
// is met at the first notification.
class NotificationServer final : public QObject {
  Q_OBJECT

 public:
  // Does nothing without a bus or a server.
  void show(const UserNotification& notification);
  void addActionHandler(UserNotifications::ActionHandler handler);

 private:
  Q_SLOT void actionInvoked(uint notification, const QString& action);
  Q_SLOT void notificationClosed(uint notification);

  std::vector<UserNotifications::ActionHandler> handlers_;
  bool listening_ = false;
  std::map<uint, std::string> categories_;  // of the notifications on the screen
};

}  // namespace quorlo
