#include "ui/tray/qt_status_item.h"

#include "base/localized.h"
#include "base/log.h"
#include "platform/main_queue.h"
#include "platform/user_defaults.h"
#include "platform/user_notifications.h"
#include "ui/symbols.h"
#include "ui/tray/status_notifier_item.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QEvent>
#include <QMenu>
#include <QSystemTrayIcon>

#include <optional>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

const auto kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
constexpr Seconds kTrayPatience{10};  // a session may start its panel after us
constexpr std::string_view kToldOfMissingTray = "HasBeenToldOfMissingTray";

}  // namespace

// Qt decides once in the life of a process which kind of tray it serves, by what it finds at its first tray
// icon. So its own icon is made only while no tray is on the bus, and the other kind is served here.
class QtStatusItem::Icon : public QObject {
 public:
  Icon() {
    qApp->installEventFilter(this);
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    auto* const watcher =
        new QDBusServiceWatcher(kWatcher, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { trayOfBusIs(!owner.isEmpty()); });
    busHasTray_ = bus.interface()->isServiceRegistered(kWatcher);
  }

  void setVisible(bool visible) {
    if (std::exchange(isVisible_, visible) != visible) update();
  }
  bool isVisible() const { return isVisible_; }
  bool hasTray() const { return busHasTray_ || QSystemTrayIcon::isSystemTrayAvailable(); }

  void setImage(StatusImage image) {
    image_ = image;
    showImage();
  }
  void setToolTip(const QString& text) {
    toolTip_ = text;
    onBus_.setToolTip(text);
    if (embedded_) embedded_->setToolTip(text);
  }
  void setClickHandler(std::function<void()> clicked) { clicked_ = std::move(clicked); }
  void setMenu(const std::vector<StatusMenuItem>& items) {
    menu_.clear();
    for (const auto& item : items) {
      if (item.title.empty()) {
        menu_.addSeparator();
        continue;
      }
      auto title = QString::fromStdU16String(item.title).replace(u'&', QStringLiteral("&&"));
      auto* const action = menu_.addAction(title);
      // Some styles draw a check mark where the icon is, or not at all beside one.
      if (!item.image.empty() && !item.isChecked) action->setIcon(symbol(QString::fromUtf8(item.image)));
      action->setCheckable(item.isChecked.has_value());
      action->setChecked(item.isChecked.value_or(false));
      // Queued, for the choice may change the menu.
      connect(
          action, &QAction::triggered, this,
          [chosen = item.chosen] {
            if (chosen) chosen();
          },
          Qt::QueuedConnection);
    }
    onBus_.setMenu(items);
  }

 protected:
  // The trays are given pictures, which are drawn in the colour that the palette asks for.
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::ApplicationPaletteChange) showImage();
    return QObject::eventFilter(object, event);
  }

 private:
  void showImage() {
    const auto icon = statusImage(image_);
    onBus_.setIcon(icon);
    if (embedded_) embedded_->setIcon(icon);
  }

  void trayOfBusIs(bool there) {
    busHasTray_ = there;
    update();
  }

  void update() {
    const bool isOnBus = isVisible_ && busHasTray_;
    if (isOnBus) {
      onBus_.showInTray();
    } else {
      onBus_.hide();
    }
    if (isVisible_ && !busHasTray_ && !embedded_) makeEmbedded();
    if (embedded_) embedded_->setVisible(isVisible_ && !busHasTray_);
  }

  void makeEmbedded() {
    embedded_.emplace(statusImage(image_));
    embedded_->setToolTip(toolTip_);
    embedded_->setContextMenu(&menu_);
    connect(&*embedded_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
      if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::MiddleClick) click();
    });
  }

  void click() {
    if (clicked_) clicked_();
  }

  bool isVisible_ = false;
  bool busHasTray_ = false;
  StatusImage image_ = StatusImage::regular;
  QString toolTip_;
  QMenu menu_;
  std::function<void()> clicked_;
  StatusNotifierItem onBus_{{[this] { click(); }, [this](QPoint place) { menu_.popup(place); }}};
  std::optional<QSystemTrayIcon> embedded_;
};

QtStatusItem::QtStatusItem(const Dependencies& dependencies)
    : use_(dependencies), icon_(std::make_unique<Icon>()) {
  icon_->setImage(StatusImage::regular);
}

QtStatusItem::~QtStatusItem() = default;

void QtStatusItem::setVisible(bool visible) {
  icon_->setVisible(visible);
  if (!visible || std::exchange(willLookForTray_, true)) return;
  use_.queue.runAfter(kTrayPatience, life_.guard([this] { tellOfMissingTray(); }));
}

void QtStatusItem::setImage(StatusImage image) {
  icon_->setImage(image);
}

void QtStatusItem::setToolTip(const std::u16string& text) {
  icon_->setToolTip(QString::fromStdU16String(text));
}

void QtStatusItem::setClickHandler(std::function<void()> clicked) {
  icon_->setClickHandler(std::move(clicked));
}

void QtStatusItem::setMenu(std::vector<StatusMenuItem> items) {
  icon_->setMenu(items);
}

void QtStatusItem::tellOfMissingTray() {
  if (!icon_->isVisible() || icon_->hasTray()) return;
  logInfo("There is no tray for the program's icon.");
  if (use_.defaults.value(DefaultsDomain::standard, kToldOfMissingTray)) return;
  use_.defaults.setValue(DefaultsDomain::standard, kToldOfMissingTray, true);
  use_.notifications.post(
      {.title = localized(u"Quorlo is running"),
       .body = localized(
           u"This desktop has no tray for its icon. The menu opens by its hot key or the command “quorlo menu”."),
       .categoryIdentifier = "missing-tray",
       .actionTitle = {},
       .delay = Seconds(0)});
}

}  // namespace quorlo
