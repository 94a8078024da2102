#include "ui/menu/menu_list.h"

#include "ui/menu/menu_item_delegate.h"

#include <QAccessible>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace quorlo {

MenuList::MenuList(QWidget* parent) : QListView(parent) {
  setModel(&model_);
  setItemDelegate(new MenuItemDelegate(this));
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setAutoScroll(false);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setMouseTracking(true);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(), qOverload<>(&QWidget::update));
}

void MenuList::setItems(const std::vector<MenuItem>& items) {
  lastPointer_ = QCursor::pos();
  pressedRow_ = -1;
  model_.setItems(items);
}

int MenuList::enabledRow(int row, int steps) const {
  const int direction = steps < 0 ? -1 : 1;
  int found = row >= 0 && row < rowCount() && item(row).isEnabled() ? row : -1;
  for (int next = row + direction; steps != 0 && next >= 0 && next < rowCount(); next += direction) {
    if (!item(next).isEnabled()) continue;
    found = next;
    steps -= direction;
  }
  return found;
}

int MenuList::rowsPerPage() const {
  const auto top = indexAt({0, 0});
  const auto bottom = indexAt({0, viewport()->height() - 1});
  const int last = bottom.isValid() ? bottom.row() : rowCount() - 1;
  return std::max(1, last - std::max(0, top.row()) - 1);
}

int MenuList::highlightedRow() const {
  return currentIndex().row();
}

void MenuList::setHighlightedRow(int row, Reveal reveal) {
  if (row < 0) return selectionModel()->clear();
  const auto index = model_.index(row, 0);
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  if (reveal == Reveal::yes) {
    // The header of a group comes into view with its first snippet.
    if (row > 0 && !item(row - 1).isEnabled()) scrollTo(model_.index(row - 1, 0));
    scrollTo(index);
  }
  QAccessibleEvent event(this, QAccessible::Focus);
  event.setChild(row);
  QAccessible::updateAccessibility(&event);
}

int MenuList::contentHeight() const {
  int height = 0;
  for (int row = 0; row < rowCount(); ++row) height += sizeHintForIndex(model_.index(row, 0)).height();
  return height;
}

int MenuList::contentWidth() const {
  return sizeHintForColumn(0);
}

QRect MenuList::placeOfRow(int row) const {
  const auto rect = visualRect(model_.index(row, 0));
  return {viewport()->mapToGlobal(rect.topLeft()), rect.size()};
}

int MenuList::enabledRowAt(const QPoint& place) const {
  const auto index = indexAt(place);
  return index.isValid() && item(index.row()).isEnabled() ? index.row() : -1;
}

// A slim mark instead of a scroll bar says how much more there is.
void MenuList::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  const auto* const bar = verticalScrollBar();
  if (bar->maximum() <= bar->minimum()) return;
  constexpr int kWidth = 3;
  const int room = viewport()->height();
  const int length = std::max(room * room / (room + bar->maximum()), 8 * kWidth);
  const int top = (room - length) * bar->value() / bar->maximum();
  const QRect whole = viewport()->rect();
  const QRect mark(whole.right() - kWidth, top, kWidth, length);
  QPainter painter(viewport());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  auto color = palette().color(QPalette::Text);
  color.setAlphaF(0.35F);
  painter.setBrush(color);
  painter.drawRoundedRect(QStyle::visualRect(layoutDirection(), whole, mark), kWidth / 2.0, kWidth / 2.0);
}

void MenuList::mouseMoveEvent(QMouseEvent* event) {
  const auto pointer = event->globalPosition().toPoint();
  if (std::exchange(lastPointer_, pointer) == pointer) return;
  const int row = enabledRowAt(event->position().toPoint());
  if (row >= 0) events_.pointed(row);
}

void MenuList::mousePressEvent(QMouseEvent* event) {
  pressedRow_ = event->button() == Qt::LeftButton ? enabledRowAt(event->position().toPoint()) : -1;
  if (pressedRow_ >= 0) events_.pointed(pressedRow_);
}

void MenuList::mouseReleaseEvent(QMouseEvent* event) {
  const int pressed = std::exchange(pressedRow_, -1);
  const int row = enabledRowAt(event->position().toPoint());
  if (row >= 0 && row == pressed) events_.clicked(row);
}

// The mouse highlights by `pointed` alone.
QItemSelectionModel::SelectionFlags MenuList::selectionCommand(const QModelIndex& index,
                                                               const QEvent* event) const {
  return event ? QItemSelectionModel::NoUpdate : QListView::selectionCommand(index, event);
}

}  // namespace quorlo
