#include "ui/desktop/dbus_user_notifications.h"

#include "platform/main_queue.h"
#include "ui/desktop/notification_server.h"

#include <utility>

namespace quorlo {

DBusUserNotifications::DBusUserNotifications(MainQueue& queue)
    : queue_(queue), server_(std::make_shared<NotificationServer>()) {}

DBusUserNotifications::~DBusUserNotifications() = default;

void DBusUserNotifications::post(UserNotification notification) {
  const auto delay = notification.delay;
  queue_.runAfter(delay, [weak = std::weak_ptr(server_), notification = std::move(notification)] {
    if (const auto server = weak.lock()) server->show(notification);
  });
}

void DBusUserNotifications::addActionHandler(ActionHandler handler) {
  server_->addActionHandler(std::move(handler));
}

}  // namespace quorlo
