#include "ui/menu/menu_placement.h"

#include <QGuiApplication>

#include <algorithm>

namespace quorlo {
namespace {

int inside(int start, int length, int roomStart, int roomLength) {
  return std::max(roomStart, std::min(start, roomStart + roomLength - length));
}

}  // namespace

const QScreen& screenAt(const QPoint& point) {
  const auto* const screen = QGuiApplication::screenAt(point);
  return screen ? *screen : *QGuiApplication::primaryScreen();
}

QPoint placeAtPointer(const QPoint& pointer, const QSize& size, const QRect& room,
                      Qt::LayoutDirection direction) {
  const int x = direction == Qt::RightToLeft ? pointer.x() - size.width() : pointer.x();
  const bool fitsBelow = pointer.y() + size.height() <= room.y() + room.height();
  const int above = pointer.y() - size.height();
  const int y = !fitsBelow && above >= room.y() ? above : pointer.y();
  return {inside(x, size.width(), room.x(), room.width()), inside(y, size.height(), room.y(), room.height())};
}

QPoint placeBeside(const QRect& row, const QSize& size, const QRect& room, Qt::LayoutDirection direction) {
  const int before = row.x() - size.width();
  const int after = row.x() + row.width();
  const bool fitsBefore = before >= room.x();
  const bool fitsAfter = after + size.width() <= room.x() + room.width();
  const bool goesBefore = direction == Qt::RightToLeft ? fitsBefore || !fitsAfter : fitsBefore && !fitsAfter;
  const int x = goesBefore ? before : after;
  return {inside(x, size.width(), room.x(), room.width()),
          inside(row.y() - kMenuPadding, size.height(), room.y(), room.height())};
}

}  // namespace quorlo
