#pragma once

#include <QAbstractTableModel>

#include <memory>
#include <string>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;
class QLSnippet;
class SettingsController;
enum class SnippetSortOption;

// The snippets that a folder shows and that match a search, in the order of the settings, as they were when
// the model was last refreshed. The references outlive the model.
class SnippetListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { titleColumn, abbreviationColumn, modifiedColumn, usesColumn, columnCount_ };

  SnippetListModel(ManagedObjectContext& context, SettingsController& settings, QObject* parent = nullptr);

  // Null shows nothing; an empty text leaves nothing out.
  void show(std::shared_ptr<QLCategory> folder, const std::u16string& searchText);

  // Takes over what has changed in the library or the settings; the model is reset when snippets came, went
  // or moved.
  void refresh();

  std::shared_ptr<QLSnippet> snippet(const QModelIndex& index) const;
  QModelIndex indexOf(const QLSnippet* snippet) const;

  // What the lists are sorted by when the user sorts by a column, and the other way round.
  static SnippetSortOption sortOption(int column);
  static int sortColumn(SnippetSortOption option);  // -1 for one that has no column

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;  // writes the settings

  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDragActions() const override { return Qt::CopyAction | Qt::MoveAction; }

 private:
  ManagedObjectContext& context_;
  SettingsController& settings_;
  std::shared_ptr<QLCategory> folder_;
  std::u16string searchText_;
  std::vector<std::shared_ptr<QLSnippet>> snippets_;
};

}  // namespace quorlo
