#pragma once

#include <QAbstractListModel>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;
class QLSnippet;

// The folders of the library in their order, with their symbols and how many snippets they showed when the
// model was last refreshed. `context` outlives the model.
class FolderListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  explicit FolderListModel(ManagedObjectContext& context, QObject* parent = nullptr);

  // Takes over what has changed in the library; the model is reset when folders came, went or moved.
  void refresh();

  std::shared_ptr<QLCategory> folder(const QModelIndex& index) const;
  QModelIndex indexOf(const QLCategory* folder) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  // Folders of the user's own are dragged and take files and snippets, the trash takes snippets.
  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }
  Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction; }
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 Q_SIGNALS:
  void filesDropped(const std::vector<std::filesystem::path>& files,
                    const std::shared_ptr<QLCategory>& folder);
  void snippetsDropped(const std::vector<std::shared_ptr<QLSnippet>>& snippets,
                       const std::shared_ptr<QLCategory>& folder);

 private:
  ManagedObjectContext& context_;
  std::vector<std::shared_ptr<QLCategory>> folders_;
  std::vector<std::size_t> counts_;  // of their snippets
};

}  // namespace quorlo
