#include "ui/desktop/screen_lock.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace quorlo {
namespace {

const auto kLogin = QStringLiteral("org.freedesktop.login1");
const auto kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const auto kSession = QStringLiteral("org.freedesktop.login1.Session");
constexpr auto kScreenSavers = {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                                "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver", "org.xfce.ScreenSaver"};

QDBusMessage sessionCall() {
  const auto manager = [](const char* method) {
    return QDBusMessage::createMethodCall(kLogin, QStringLiteral("/org/freedesktop/login1"),
                                          QStringLiteral("org.freedesktop.login1.Manager"),
                                          QString::fromLatin1(method));
  };
  if (const auto id = qEnvironmentVariable("XDG_SESSION_ID"); !id.isEmpty()) {
    return manager("GetSession") << id;
  }
  return manager("GetSessionByPID") << static_cast<uint>(QCoreApplication::applicationPid());
}

}  // namespace

ScreenLock::ScreenLock(std::function<void(bool)> changed) : changed_(std::move(changed)) {
  auto bus = QDBusConnection::sessionBus();
  ends_.setConnection(bus);
  ends_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
  connect(&ends_, &QDBusServiceWatcher::serviceUnregistered, this,
          [this](const QString& locker) { note(locker, false); });
  for (const auto* const interface : kScreenSavers) {
    bus.connect({}, {}, QString::fromLatin1(interface), QStringLiteral("ActiveChanged"), this,
                SLOT(activeChanged(bool, QDBusMessage)));
    askScreenSaver(QString::fromLatin1(interface));
  }
  followSession();
}

// By its name, so that it is not started. Its signals tell its other name, under which it is remembered.
void ScreenLock::askScreenSaver(const QString& interface) {
  const auto path = QLatin1Char('/') + QString(interface).replace(QLatin1Char('.'), QLatin1Char('/'));
  auto call = QDBusMessage::createMethodCall(interface, path, interface, QStringLiteral("GetActive"));
  call.setAutoStartService(false);
  auto* const answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<bool> isActive = *answer;
    if (isActive.isValid() && isActive.value()) activeChanged(true, isActive.reply());
    answer->deleteLater();
  });
}

void ScreenLock::askSession(const QString& path) {
  const auto call = QDBusMessage::createMethodCall(kLogin, path, kProperties, QStringLiteral("Get"))
                    << kSession << QStringLiteral("LockedHint");
  auto* const answer = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<QDBusVariant> isLocked = *answer;
    if (isLocked.isValid()) note(kLogin, isLocked.value().variant().toBool());
    answer->deleteLater();
  });
}

void ScreenLock::followSession() {
  auto bus = QDBusConnection::systemBus();
  if (!bus.isConnected()) return;
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(sessionCall()), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, bus, answer]() mutable {
    const QDBusPendingReply<QDBusObjectPath> session = *answer;
    if (session.isValid()) {
      bus.connect(kLogin, session.value().path(), kProperties, QStringLiteral("PropertiesChanged"), this,
                  SLOT(sessionChanged(QString, QVariantMap)));
      askSession(session.value().path());
    }
    answer->deleteLater();
  });
}

void ScreenLock::sessionChanged(const QString& interface, const QVariantMap& changed) {
  const auto hint = changed.find(QStringLiteral("LockedHint"));
  if (interface == kSession && hint != changed.end()) note(kLogin, hint->toBool());
}

void ScreenLock::activeChanged(bool isActive, const QDBusMessage& message) {
  const auto locker = message.service();
  if (!isActive) {
    ends_.removeWatchedService(locker);
    return note(locker, false);
  }
  ends_.addWatchedService(locker);
  // One that has ended before it was watched would leave the screen locked for good.
  note(locker, QDBusConnection::sessionBus().interface()->isServiceRegistered(locker));
}

void ScreenLock::note(const QString& locker, bool isLocked) {
  const bool wasLocked = !lockers_.empty();
  if (isLocked) {
    lockers_.insert(locker);
  } else {
    lockers_.erase(locker);
  }
  if (wasLocked != !lockers_.empty()) changed_(!wasLocked);
}

}  // namespace quorlo
