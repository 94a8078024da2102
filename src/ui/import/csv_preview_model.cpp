#include "ui/import/csv_preview_model.h"

#include "ui/qt_text.h"

#include <QFont>
#include <QPalette>
#include <QStringList>

#include <optional>
#include <string_view>

namespace quorlo {
namespace {

constexpr double kTint = 0.22;

QColor mixed(const QColor& base, const QColor& tint) {
  const auto mix = [](double a, double b) { return static_cast<float>(a + (b - a) * kTint); };
  return QColor::fromRgbF(mix(base.redF(), tint.redF()), mix(base.greenF(), tint.greenF()),
                          mix(base.blueF(), tint.blueF()));
}

// A cell is one line.
QString inOneLine(const std::u16string& text) {
  return toQString(text)
      .replace(QStringLiteral("\r\n"), QStringLiteral(" ↵ "))
      .replace(QLatin1Char('\n'), QStringLiteral(" ↵ "))
      .replace(QLatin1Char('\t'), QLatin1Char(' '));
}

}  // namespace

struct CsvPreviewModel::Use {
  std::u16string_view name;
  QColor tint;
};

// A column may be used for several things.
std::vector<CsvPreviewModel::Use> CsvPreviewModel::usesOf(int column) const {
  const std::pair<std::optional<std::size_t>, Use> all[] = {
      {columns_.title, {u"Title", QColor(0, 110, 255)}},
      {columns_.abbreviation, {u"Abbreviation", QColor(255, 140, 0)}},
      {columns_.text, {u"Text", QColor(0, 170, 70)}}};
  std::vector<Use> uses;
  for (const auto& [chosen, use] : all) {
    if (chosen == static_cast<std::size_t>(column)) uses.push_back(use);
  }
  return uses;
}

void CsvPreviewModel::setTable(const Row& headers, const std::vector<Row>& rows) {
  if (headers == headers_ && rows == rows_) return;
  beginResetModel();
  headers_ = headers;
  rows_ = rows;
  endResetModel();
}

void CsvPreviewModel::setColumns(const CsvColumns& columns) {
  if (columns == columns_) return;
  columns_ = columns;
  tellOfChangedLook();
}

void CsvPreviewModel::setPalette(const QPalette& palette) {
  base_ = palette.color(QPalette::Base);
  pale_ = palette.color(QPalette::PlaceholderText);
  tellOfChangedLook();
}

void CsvPreviewModel::tellOfChangedLook() {
  if (headers_.empty()) return;
  Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
  if (!rows_.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

int CsvPreviewModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int CsvPreviewModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

QVariant CsvPreviewModel::data(const QModelIndex& index, int role) const {
  const auto& row = rows_.at(static_cast<std::size_t>(index.row()));
  const auto column = static_cast<std::size_t>(index.column());
  if (role == Qt::DisplayRole) return column < row.size() ? inOneLine(row[column]) : QString();
  if (role != Qt::BackgroundRole && role != Qt::ForegroundRole) return {};
  const auto uses = usesOf(index.column());
  if (role == Qt::BackgroundRole) return uses.empty() ? QVariant() : mixed(base_, uses.front().tint);
  return uses.empty() ? QVariant(pale_) : QVariant();
}

QVariant CsvPreviewModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical) return QAbstractTableModel::headerData(section, orientation, role);
  const auto uses = usesOf(section);
  switch (role) {
    case Qt::DisplayRole: {
      QStringList names;
      for (const auto& each : uses) names << localizedText(each.name);
      return names.join(QStringLiteral(", ")) + QLatin1Char('\n') +
             inOneLine(headers_.at(static_cast<std::size_t>(section)));
    }
    case Qt::FontRole: {
      QFont font;
      font.setBold(!uses.empty());
      return font;
    }
    case Qt::BackgroundRole:
      return uses.empty() ? QVariant() : mixed(base_, uses.front().tint);
    case Qt::ForegroundRole:
      return uses.empty() ? QVariant(pale_) : QVariant();
    default:
      return {};
  }
}

}  // namespace quorlo
