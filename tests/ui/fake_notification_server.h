#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace quorlo {

// Shows nothing; keeps what it is sent.
class FakeNotificationServer : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

 public:
  std::vector<QStringList> shown;  // title, body, actions

  Q_SLOT uint Notify(const QString&, uint, const QString&, const QString& title, const QString& body,
                     const QStringList& actions, const QVariantMap&, int) {
    shown.push_back(QStringList{title, body} + actions);
    return static_cast<uint>(shown.size());
  }

  Q_SIGNAL void ActionInvoked(uint notification, const QString& action);
};

}  // namespace quorlo
