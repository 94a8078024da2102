#pragma once

#include "ui/menu/menu_item_model.h"

#include <QListView>

#include <functional>
#include <utility>
#include <vector>

namespace quorlo {

// A list of menu items in which one is highlighted. It never has the keyboard focus: whoever owns it sends it
// to the rows, and is told what the mouse does.
class MenuList final : public QListView {
 public:
  struct Events {
    std::function<void(int row)> pointed;  // the pointer was moved onto an enabled row
    std::function<void(int row)> clicked;  // on an enabled row
  };

  enum class Reveal { no, yes };

  explicit MenuList(QWidget* parent);

  void setEvents(Events events) { events_ = std::move(events); }
  void setItems(const std::vector<MenuItem>& items);
  int rowCount() const { return model_.rowCount(); }
  const MenuItem& item(int row) const { return model_.row(row).item; }

  // The enabled row `steps` enabled rows after `row`; as far as there are any. -1 when there is none.
  int enabledRow(int row, int steps) const;
  int firstEnabledRow() const { return enabledRow(-1, 1); }
  int lastEnabledRow() const { return enabledRow(rowCount(), -1); }
  int rowsPerPage() const;

  int highlightedRow() const;  // -1 for none
  // A screen reader reads it. Scrolls so that it is seen, if wished.
  void setHighlightedRow(int row, Reveal reveal);

  int contentHeight() const;
  int contentWidth() const;
  QRect placeOfRow(int row) const;  // on the screen

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;

 private:
  int enabledRowAt(const QPoint& place) const;

  MenuItemModel model_;
  Events events_;
  QPoint lastPointer_;  // a list that moves under a pointer at rest is not pointed at
  int pressedRow_ = -1;
};

}  // namespace quorlo
