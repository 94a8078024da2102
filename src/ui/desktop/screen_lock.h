#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <set>

class QDBusMessage;

namespace quorlo {

// Tells when the screen is locked, so that nobody takes the password for an abbreviation: by logind's session
// (freedesktop.org, org.freedesktop.login1.Session, LockedHint) and the screen savers of the session bus.
// Both are asked at the start, since the screen may be locked already. Never locked where there is neither.
// Needs the QCoreApplication.
class ScreenLock final : public QObject {
  Q_OBJECT

 public:
  // `changed` is called with each change, never from within the constructor.
  explicit ScreenLock(std::function<void(bool isLocked)> changed);

 private:
  Q_SLOT void activeChanged(bool isActive, const QDBusMessage& message);
  Q_SLOT void sessionChanged(const QString& interface, const QVariantMap& changed);
  void followSession();
  void askSession(const QString& path);
  void askScreenSaver(const QString& interface);
  void note(const QString& locker, bool isLocked);

  std::function<void(bool)> changed_;
  std::set<QString> lockers_;  // those that say the screen is locked
  QDBusServiceWatcher ends_;   // of a locker that crashed
};

}  // namespace quorlo
