#include "ui/dbus_user_notifications.h"

#include "platform/main_queue.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <map>
#include <utility>

namespace quorlo {
namespace {

const auto kService = QStringLiteral("org.freedesktop.Notifications");
const auto kPath = QStringLiteral("/org/freedesktop/Notifications");
const auto kAction = QStringLiteral("action");

}  // namespace

class DBusUserNotifications::Server final : public QObject {
  Q_OBJECT

 public:
  void notify(const UserNotification& notification) {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    if (!std::exchange(listening_, true)) {
      bus.connect(kService, kPath, kService, QStringLiteral("ActionInvoked"), this,
                  SLOT(actionInvoked(uint, QString)));
      bus.connect(kService, kPath, kService, QStringLiteral("NotificationClosed"), this,
                  SLOT(notificationClosed(uint)));
    }
    QStringList actions;
    if (!notification.actionTitle.empty()) {
      actions << kAction << QString::fromStdU16String(notification.actionTitle);
    }
    auto call = QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("Notify"));
    constexpr auto kReplacesNone = 0U;
    constexpr auto kServersExpiry = -1;
    call << QStringLiteral("Quorlo") << kReplacesNone << QStringLiteral("org.quorlo.Quorlo")
         << QString::fromStdU16String(notification.title)
         << QString::fromStdU16String(notification.body).toHtmlEscaped() << actions
         << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("org.quorlo.Quorlo")}}
         << kServersExpiry;
    auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this, answer, category = notification.categoryIdentifier] {
              const QDBusPendingReply<uint> identifier = *answer;
              if (identifier.isValid()) categories_[identifier.value()] = category;
              answer->deleteLater();
            });
  }

  ActionHandler handler;

 private:
  Q_SLOT void actionInvoked(uint notification, const QString& action) {
    const auto shown = categories_.find(notification);  // absent for those of other programs
    if (shown == categories_.end() || action != kAction) return;
    const auto category = shown->second;
    if (handler) handler(category);
  }

  Q_SLOT void notificationClosed(uint notification) { categories_.erase(notification); }

  bool listening_ = false;
  std::map<uint, std::string> categories_;  // of the notifications on the screen
};

DBusUserNotifications::DBusUserNotifications(MainQueue& queue)
    : queue_(queue), server_(std::make_shared<Server>()) {}

DBusUserNotifications::~DBusUserNotifications() = default;

void DBusUserNotifications::post(UserNotification notification) {
  const auto delay = notification.delay;
  queue_.runAfter(delay, [weak = std::weak_ptr(server_), notification = std::move(notification)] {
    if (const auto server = weak.lock()) server->notify(notification);
  });
}

void DBusUserNotifications::setActionHandler(ActionHandler handler) {
  server_->handler = std::move(handler);
}

}  // namespace quorlo

#include "dbus_user_notifications.moc"
