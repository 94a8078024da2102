#pragma once

#include "app/shell/menu/menu_item.h"

#include <QAbstractListModel>
#include <QString>

#include <vector>

namespace quorlo {

// Rows of the snippet menu for a list view. What is drawn or read out is prepared here once.
class MenuItemModel final : public QAbstractListModel {
 public:
  struct Row {
    MenuItem item;
    QString title;
    QString abbreviation;  // of a snippet; empty for none
    QString preview;       // of a snippet: the beginning of its text in one line
    QString spoken;        // for a screen reader
  };

  void setItems(const std::vector<MenuItem>& items);
  const Row& row(int number) const { return rows_[static_cast<std::size_t>(number)]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  std::vector<Row> rows_;
};

}  // namespace quorlo
