#pragma once

#include "ui/menu/menu_list.h"

#include <QFrame>

namespace quorlo {

// The items of a submenu beside the row that they belong to. Takes neither the keyboard nor the mouse away
// from the menu.
class SubmenuWindow final : public QFrame {
 public:
  explicit SubmenuWindow(QWidget* menu);

  MenuList& list() { return *list_; }
  // On the side of the row where the screen has room; the row's place is that on the screen.
  void openBeside(const QRect& row, const std::vector<MenuItem>& items);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  MenuList* list_;
};

// The line around a window of the menu.
void paintMenuBorder(QWidget& window);

}  // namespace quorlo
