#pragma once

#include <QAbstractItemDelegate>

namespace quorlo {

// Draws the rows of a MenuItemModel: for a snippet its type's symbol, title and abbreviation over one line
// of its text.
class MenuItemDelegate final : public QAbstractItemDelegate {
 public:
  using QAbstractItemDelegate::QAbstractItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace quorlo
