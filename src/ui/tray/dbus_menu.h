#pragma once

#include "platform/status_item.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace quorlo {

// An item of a menu and what is below it, as it travels over D-Bus.
struct DBusMenuNode {
  int id = 0;
  QVariantMap properties;
  QList<QVariant> children;  // of DBusMenuNode
};

struct DBusMenuProperties {
  int id = 0;
  QVariantMap properties;
};

struct DBusMenuEvent {
  int id = 0;
  QString name;
  QDBusVariant data;
  uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& to, const DBusMenuNode& node);
const QDBusArgument& operator>>(const QDBusArgument& from, DBusMenuNode& node);
QDBusArgument& operator<<(QDBusArgument& to, const DBusMenuProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& from, DBusMenuProperties& item);
QDBusArgument& operator<<(QDBusArgument& to, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& from, DBusMenuEvent& event);

// A flat menu that a tray fetches and shows by its own means ("com.canonical.dbusmenu", version 3).
class DBusMenu final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
  Q_PROPERTY(uint Version READ version)
  Q_PROPERTY(QString TextDirection READ textDirection)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

 public:
  DBusMenu();

  void setItems(std::vector<StatusMenuItem> items);

  uint version() const { return 3; }
  QString textDirection() const;
  QString status() const { return QStringLiteral("normal"); }
  QStringList iconThemePath() const { return {}; }

 public Q_SLOTS:
  uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                 quorlo::DBusMenuNode& layout) const;
  QList<quorlo::DBusMenuProperties> GetGroupProperties(const QList<int>& ids,
                                                       const QStringList& propertyNames) const;
  QDBusVariant GetProperty(int id, const QString& name) const;
  void Event(int id, const QString& name, const QDBusVariant& data, uint timestamp);
  QList<int> EventGroup(const QList<quorlo::DBusMenuEvent>& events);
  bool AboutToShow(int id) const;
  QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) const;

 Q_SIGNALS:
  void LayoutUpdated(uint revision, int parent);

 private:
  QVariantMap properties(int id) const;

  std::vector<StatusMenuItem> items_;  // the identifier of an item is its index + 1, that of the menu is 0
  uint revision_ = 1;
};

}  // namespace quorlo

Q_DECLARE_METATYPE(quorlo::DBusMenuNode)
Q_DECLARE_METATYPE(quorlo::DBusMenuProperties)
Q_DECLARE_METATYPE(quorlo::DBusMenuEvent)
