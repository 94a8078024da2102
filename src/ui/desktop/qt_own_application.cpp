#include "ui/desktop/qt_own_application.h"

#include <QApplication>
#include <QPointer>
#include <QVariant>
#include <QWidget>
#include <QWindow>

#include <utility>
#include <vector>

namespace quorlo {
namespace {

// Windows in the user's sense: neither menus nor tool tips nor the icon in the tray. An alert that waits for
// its answer counts as none, for hiding it would answer it.
std::vector<QWidget*> visibleWindows() {
  std::vector<QWidget*> windows;
  for (auto* const widget : QApplication::topLevelWidgets()) {
    const auto type = widget->windowType();
    const auto isWindow = type == Qt::Window || (type == Qt::Dialog && !widget->isModal());
    const auto isManaged = !widget->windowFlags().testFlag(Qt::BypassWindowManagerHint);
    if (isWindow && isManaged && widget->isVisible()) windows.push_back(widget);
  }
  return windows;
}

}  // namespace

struct QtOwnApplication::HiddenWindows {
  std::vector<QPointer<QWidget>> windows;  // null for one closed for good meanwhile
};

QtOwnApplication::QtOwnApplication() : hidden_(std::make_unique<HiddenWindows>()) {}

QtOwnApplication::~QtOwnApplication() = default;

bool QtOwnApplication::hasVisibleWindows() const {
  return !visibleWindows().empty();
}

void QtOwnApplication::hide() {
  for (auto* const window : visibleWindows()) {
    hidden_->windows.emplace_back(window);
    window->hide();
  }
}

// The user types elsewhere, so the focus stays there. Qt asks this property at each show, and the widget's
// attribute of that name only when it makes the window.
void QtOwnApplication::unhide() {
  constexpr const char* kShowWithoutActivating = "_q_showWithoutActivating";
  for (const auto& window : std::exchange(hidden_->windows, {})) {
    if (!window || window->isVisible()) continue;
    auto* const handle = window->windowHandle();
    const auto former = handle->property(kShowWithoutActivating);
    handle->setProperty(kShowWithoutActivating, true);
    window->show();
    handle->setProperty(kShowWithoutActivating, former);
  }
}

}  // namespace quorlo
