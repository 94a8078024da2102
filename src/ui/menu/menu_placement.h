#pragma once

#include <QPoint>
#include <QRect>
#include <QScreen>
#include <QSize>
#include <Qt>

namespace quorlo {

inline constexpr int kMenuPadding = 5;  // above the first and below the last row

// The screen that shows the point, or the nearest thing to it. Needs the QGuiApplication.
const QScreen& screenAt(const QPoint& point);

// Where a menu of the given size opens at the pointer: a corner of it is there where the room allows, and it
// is inside of the room as a whole if it fits at all.
QPoint placeAtPointer(const QPoint& pointer, const QSize& size, const QRect& room,
                      Qt::LayoutDirection direction);

// Where a submenu opens beside the row of its menu: where the language goes, or on the other side.
QPoint placeBeside(const QRect& row, const QSize& size, const QRect& room, Qt::LayoutDirection direction);

}  // namespace quorlo
