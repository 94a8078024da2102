#include "ui/tray/status_notifier_item.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QImage>
#include <QtEndian>

#include <utility>

namespace quorlo {
namespace {

const auto kItemPath = QStringLiteral("/StatusNotifierItem");
const auto kMenuPath = QStringLiteral("/StatusNotifierItem/Menu");
constexpr int kSizes[] = {16, 22, 24, 32, 44, 48, 64};

StatusPixmap pixmapFor(const QIcon& icon, int size) {
  auto image = icon.pixmap(QSize(size, size), 1).toImage().convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y) {
    auto* const line = reinterpret_cast<quint32*>(image.scanLine(y));
    qToBigEndian<quint32>(line, image.width(), line);
  }
  return {image.width(), image.height(),
          QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes())};
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& to, const StatusPixmap& pixmap) {
  to.beginStructure();
  to << pixmap.width << pixmap.height << pixmap.bytes;
  to.endStructure();
  return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, StatusPixmap& pixmap) {
  from.beginStructure();
  from >> pixmap.width >> pixmap.height >> pixmap.bytes;
  from.endStructure();
  return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const StatusToolTip& toolTip) {
  to.beginStructure();
  to << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
  to.endStructure();
  return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, StatusToolTip& toolTip) {
  from.beginStructure();
  from >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
  from.endStructure();
  return from;
}

StatusNotifierItem::StatusNotifierItem(Events events) : events_(std::move(events)) {
  qDBusRegisterMetaType<StatusPixmap>();
  qDBusRegisterMetaType<QList<StatusPixmap>>();
  qDBusRegisterMetaType<StatusToolTip>();
}

StatusNotifierItem::~StatusNotifierItem() {
  hide();
}

void StatusNotifierItem::showInTray() {
  auto bus = QDBusConnection::sessionBus();
  if (service_.isEmpty()) {
    const auto name =
        QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
    constexpr auto kAll = QDBusConnection::ExportAllContents;
    if (!bus.registerObject(kItemPath, this, kAll) || !bus.registerObject(kMenuPath, &menu_, kAll) ||
        !bus.registerService(name)) {
      return;
    }
    service_ = name;
  }
  auto call = QDBusMessage::createMethodCall(
      QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
      QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("RegisterStatusNotifierItem"));
  call << service_;
  call.setAutoStartService(false);
  bus.asyncCall(call);
}

// A tray forgets the item when its name leaves the bus.
void StatusNotifierItem::hide() {
  if (service_.isEmpty()) return;
  auto bus = QDBusConnection::sessionBus();
  bus.unregisterService(std::exchange(service_, {}));
  bus.unregisterObject(kMenuPath);
  bus.unregisterObject(kItemPath);
}

void StatusNotifierItem::setIcon(const QIcon& icon) {
  pixmaps_.clear();
  for (const int size : kSizes) pixmaps_.append(pixmapFor(icon, size));
  Q_EMIT NewIcon();
}

void StatusNotifierItem::setToolTip(const QString& text) {
  toolTip_ = text;
  Q_EMIT NewToolTip();
}

QDBusObjectPath StatusNotifierItem::menuPath() const {
  return QDBusObjectPath(kMenuPath);
}

void StatusNotifierItem::Activate(int /*x*/, int /*y*/) {
  if (events_.activated) events_.activated();
}

void StatusNotifierItem::ContextMenu(int x, int y) {
  if (events_.contextMenuRequested) events_.contextMenuRequested({x, y});
}

}  // namespace quorlo
