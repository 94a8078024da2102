#include "ui/menu/submenu_window.h"

#include "ui/menu/menu_placement.h"

#include <QPainter>
#include <QRegion>
#include <QScreen>
#include <QVBoxLayout>

namespace quorlo {

SubmenuWindow::SubmenuWindow(QWidget* menu)
    : QFrame(menu, Qt::ToolTip | Qt::FramelessWindowHint), list_(new MenuList(this)) {
  setBackgroundRole(QPalette::Base);
  setAutoFillBackground(true);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(1, kMenuPadding, 1, kMenuPadding);
  column->addWidget(list_);
}

void SubmenuWindow::openBeside(const QRect& row, const std::vector<MenuItem>& items) {
  list_->setItems(items);
  const QSize size(list_->contentWidth() + 2, list_->contentHeight() + 2 * kMenuPadding);
  resize(size);
  move(placeBeside(row, size, screenAt(row.center()).availableGeometry(), layoutDirection()));
  show();
  raise();
}

void SubmenuWindow::paintEvent(QPaintEvent* /*event*/) {
  paintMenuBorder(*this);
}

void paintMenuBorder(QWidget& window) {
  QPainter painter(&window);
  auto color = window.palette().color(QPalette::Text);
  color.setAlphaF(0.3F);
  const auto whole = window.rect();
  for (const auto& edge : QRegion(whole) - whole.adjusted(1, 1, -1, -1)) painter.fillRect(edge, color);
}

}  // namespace quorlo
