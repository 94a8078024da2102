#include "ui/tray/dbus_menu.h"

#include <QDBusMetaType>
#include <QGuiApplication>

#include <utility>

namespace quorlo {

QDBusArgument& operator<<(QDBusArgument& to, const DBusMenuNode& node) {
  to.beginStructure();
  to << node.id << node.properties;
  to.beginArray(QMetaType::fromType<QDBusVariant>());
  for (const auto& child : node.children) to << QDBusVariant(child);
  to.endArray();
  to.endStructure();
  return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, DBusMenuNode& node) {
  from.beginStructure();
  from >> node.id >> node.properties >> node.children;
  from.endStructure();
  return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const DBusMenuProperties& item) {
  to.beginStructure();
  to << item.id << item.properties;
  to.endStructure();
  return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, DBusMenuProperties& item) {
  from.beginStructure();
  from >> item.id >> item.properties;
  from.endStructure();
  return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const DBusMenuEvent& event) {
  to.beginStructure();
  to << event.id << event.name << event.data << event.timestamp;
  to.endStructure();
  return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, DBusMenuEvent& event) {
  from.beginStructure();
  from >> event.id >> event.name >> event.data >> event.timestamp;
  from.endStructure();
  return from;
}

DBusMenu::DBusMenu() {
  qDBusRegisterMetaType<DBusMenuNode>();
  qDBusRegisterMetaType<DBusMenuProperties>();
  qDBusRegisterMetaType<QList<DBusMenuProperties>>();
  qDBusRegisterMetaType<DBusMenuEvent>();
  qDBusRegisterMetaType<QList<DBusMenuEvent>>();
}

void DBusMenu::setItems(std::vector<StatusMenuItem> items) {
  items_ = std::move(items);
  Q_EMIT LayoutUpdated(++revision_, 0);
}

QString DBusMenu::textDirection() const {
  return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

QVariantMap DBusMenu::properties(int id) const {
  if (id == 0) return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
  if (id < 0 || id > static_cast<int>(items_.size())) return {};
  const auto& item = items_[static_cast<std::size_t>(id - 1)];
  if (item.title.empty()) return {{QStringLiteral("type"), QStringLiteral("separator")}};
  // A single underscore would mark the key of the item.
  const auto label = QString::fromStdU16String(item.title).replace(u'_', QStringLiteral("__"));
  QVariantMap properties{{QStringLiteral("label"), label}};
  if (item.isChecked) {
    properties[QStringLiteral("toggle-type")] = QStringLiteral("checkmark");
    properties[QStringLiteral("toggle-state")] = *item.isChecked ? 1 : 0;
  }
  return properties;
}

// Whoever asks for some of the properties may get all of them.
uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& /*propertyNames*/,
                         DBusMenuNode& layout) const {
  layout = {parentId, properties(parentId), {}};
  if (parentId == 0 && recursionDepth != 0) {
    for (int id = 1; id <= static_cast<int>(items_.size()); ++id) {
      layout.children.append(QVariant::fromValue(DBusMenuNode{id, properties(id), {}}));
    }
  }
  return revision_;
}

QList<DBusMenuProperties> DBusMenu::GetGroupProperties(const QList<int>& ids,
                                                       const QStringList& /*propertyNames*/) const {
  QList<DBusMenuProperties> all;
  for (const int id : ids) all.append({id, properties(id)});
  return all;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) const {
  return QDBusVariant(properties(id).value(name, QString()));
}

void DBusMenu::Event(int id, const QString& name, const QDBusVariant& /*data*/, uint /*timestamp*/) {
  if (name != QStringLiteral("clicked") || id < 1 || id > static_cast<int>(items_.size())) return;
  const auto chosen = items_[static_cast<std::size_t>(id - 1)].chosen;  // which may change the items
  if (chosen) chosen();
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent>& events) {
  for (const auto& event : events) Event(event.id, event.name, event.data, event.timestamp);
  return {};
}

bool DBusMenu::AboutToShow(int /*id*/) const {
  return false;  // what was fetched last is current
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& /*ids*/, QList<int>& idErrors) const {
  idErrors.clear();
  return {};
}

}  // namespace quorlo
