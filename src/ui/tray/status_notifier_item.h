#pragma once

#include "ui/tray/dbus_menu.h"

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QIcon>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>

namespace quorlo {

// A picture of an icon as it travels over D-Bus: ARGB, the most significant byte first.
struct StatusPixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;
};

struct StatusToolTip {
  QString iconName;
  QList<StatusPixmap> pixmaps;
  QString title;
  QString text;
};

QDBusArgument& operator<<(QDBusArgument& to, const StatusPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& from, StatusPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& to, const StatusToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& from, StatusToolTip& toolTip);

// The icon as trays on the session bus see it ("org.kde.StatusNotifierItem"). What is set is kept while no
// tray knows of it.
class StatusNotifierItem final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category)
  Q_PROPERTY(QString Id READ id)
  Q_PROPERTY(QString Title READ title)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(int WindowId READ windowId)
  Q_PROPERTY(QString IconName READ none)
  Q_PROPERTY(QList<quorlo::StatusPixmap> IconPixmap READ iconPixmap)
  Q_PROPERTY(QString OverlayIconName READ none)
  Q_PROPERTY(QString AttentionIconName READ none)
  Q_PROPERTY(quorlo::StatusToolTip ToolTip READ toolTip)
  Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
  Q_PROPERTY(QDBusObjectPath Menu READ menuPath)

 public:
  struct Events {
    std::function<void()> activated;
    std::function<void(QPoint)> contextMenuRequested;  // by a tray that cannot show a menu itself
  };

  explicit StatusNotifierItem(Events events);
  ~StatusNotifierItem() override;

  // Tells the tray that serves the session bus now; again for each new one. Nothing happens without any.
  void showInTray();
  void hide();

  void setIcon(const QIcon& icon);
  void setToolTip(const QString& text);
  void setMenu(std::vector<StatusMenuItem> items) { menu_.setItems(std::move(items)); }

  QString category() const { return QStringLiteral("ApplicationStatus"); }
  QString id() const { return QStringLiteral("org.quorlo.Quorlo"); }
  QString title() const { return QStringLiteral("Quorlo"); }
  QString status() const { return QStringLiteral("Active"); }
  int windowId() const { return 0; }
  QString none() const { return {}; }
  QList<StatusPixmap> iconPixmap() const { return pixmaps_; }
  StatusToolTip toolTip() const { return {{}, {}, QStringLiteral("Quorlo"), toolTip_}; }
  bool itemIsMenu() const { return false; }
  QDBusObjectPath menuPath() const;

 public Q_SLOTS:
  void Activate(int x, int y);
  void SecondaryActivate(int x, int y) { Activate(x, y); }
  void ContextMenu(int x, int y);
  void Scroll(int /*delta*/, const QString& /*orientation*/) {}

 Q_SIGNALS:
  void NewIcon();
  void NewToolTip();

 private:
  Events events_;
  DBusMenu menu_;
  QList<StatusPixmap> pixmaps_;
  QString toolTip_;
  QString service_;  // the name on the bus while the item is shown
};

}  // namespace quorlo

Q_DECLARE_METATYPE(quorlo::StatusPixmap)
Q_DECLARE_METATYPE(quorlo::StatusToolTip)
