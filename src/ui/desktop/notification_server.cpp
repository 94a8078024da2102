#include "ui/desktop/notification_server.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>

#include <utility>

namespace quorlo {
namespace {

const auto kService = QStringLiteral("org.freedesktop.Notifications");
const auto kPath = QStringLiteral("/org/freedesktop/Notifications");
const auto kAction = QStringLiteral("action");

QDBusMessage notifyCall(const UserNotification& notification) {
  constexpr auto kReplacesNone = 0U;
  constexpr auto kServersExpiry = -1;
  QStringList actions;
  if (!notification.actionTitle.empty()) {
    actions << kAction << QString::fromStdU16String(notification.actionTitle);
  }
  auto call = QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("Notify"));
  call << QStringLiteral("Quorlo") << kReplacesNone << QStringLiteral("org.quorlo.Quorlo")
       << QString::fromStdU16String(notification.title)
       << QString::fromStdU16String(notification.body).toHtmlEscaped() << actions
       << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("org.quorlo.Quorlo")}}
       << kServersExpiry;
  return call;
}

}  // namespace

void NotificationServer::show(const UserNotification& notification) {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  if (!std::exchange(listening_, true)) {
    bus.connect(kService, kPath, kService, QStringLiteral("ActionInvoked"), this,
                SLOT(actionInvoked(uint, QString)));
    bus.connect(kService, kPath, kService, QStringLiteral("NotificationClosed"), this,
                SLOT(notificationClosed(uint)));
  }
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(notifyCall(notification)), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this,
          [this, answer, category = notification.categoryIdentifier] {
            const QDBusPendingReply<uint> identifier = *answer;
            if (identifier.isValid()) categories_[identifier.value()] = category;
            answer->deleteLater();
          });
}

void NotificationServer::addActionHandler(UserNotifications::ActionHandler handler) {
  handlers_.push_back(std::move(handler));
}

void NotificationServer::actionInvoked(uint notification, const QString& action) {
  const auto shown = categories_.find(notification);  // absent for those of other programs
  if (shown == categories_.end() || action != kAction) return;
  const auto category = shown->second;
  for (const auto& handler : handlers_) handler(category);
}

void NotificationServer::notificationClosed(uint notification) {
  categories_.erase(notification);
}

}  // namespace quorlo
