#pragma once

#include "import/csv/csv_mapping.h"

#include <QAbstractTableModel>
#include <QColor>

#include <cstddef>
#include <string>
#include <vector>

class QPalette;

namespace quorlo {

// The first rows of a table with what each column becomes: those that are imported are coloured and headed
// by it, the others are pale.
class CsvPreviewModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  using Row = std::vector<std::u16string>;

  explicit CsvPreviewModel(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

  void setTable(const Row& headers, const std::vector<Row>& rows);
  void setColumns(const CsvColumns& columns);
  // Colours are mixed from those of the view.
  void setPalette(const QPalette& palette);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  struct Use;
  std::vector<Use> usesOf(int column) const;
  void tellOfChangedLook();

  Row headers_;
  std::vector<Row> rows_;
  CsvColumns columns_;
  QColor base_;
  QColor pale_;
};

}  // namespace quorlo
