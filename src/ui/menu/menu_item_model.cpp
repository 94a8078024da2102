#include "ui/menu/menu_item_model.h"

#include "ui/qt_text.h"

#include <QStringList>

#include <string_view>

namespace quorlo {
namespace {

constexpr std::size_t kPreviewLength = 160;  // in UTF-16 units: more than any window shows

MenuItemModel::Row rowFor(const MenuItem& item) {
  MenuItemModel::Row row{item, QString::fromStdU16String(item.title), {}, {}, {}};
  QStringList spoken{row.title};
  if (const auto& snippet = item.snippet) {
    row.abbreviation = QString::fromStdU16String(snippet->abbreviation);
    const auto start = std::u16string_view(snippet->contentString).substr(0, kPreviewLength);
    row.preview = toQString(start).simplified();
    if (snippet->type) spoken << QString::fromStdU16String(displayName(*snippet->type));
    spoken << row.abbreviation << row.preview;
  }
  spoken.removeAll(QString());
  row.spoken = spoken.join(QStringLiteral(", "));
  return row;
}

}  // namespace

void MenuItemModel::setItems(const std::vector<MenuItem>& items) {
  beginResetModel();
  rows_.clear();
  rows_.reserve(items.size());
  for (const auto& item : items) rows_.push_back(rowFor(item));
  endResetModel();
}

int MenuItemModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant MenuItemModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const auto& shown = row(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return shown.title;
    case Qt::AccessibleTextRole:
      return shown.spoken;
    default:
      return {};
  }
}

Qt::ItemFlags MenuItemModel::flags(const QModelIndex& index) const {
  if (!index.isValid() || !row(index.row()).item.isEnabled()) return Qt::ItemNeverHasChildren;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

}  // namespace quorlo
