#include "ui/library/folder_list_model.h"

#include "store/context/fetch_request.h"
#include "store/context/managed_object_context.h"
#include "store/library_editing.h"
#include "store/records/item_type_identifiers.h"
#include "store/records/ql_category.h"
#include "store/upkeep/store_maintenance.h"
#include "ui/library/dragged_snippets.h"
#include "ui/library/dropped_files.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <algorithm>
#include <utility>

namespace quorlo {

FolderListModel::FolderListModel(ManagedObjectContext& context, QObject* parent)
    : QAbstractListModel(parent), context_(context) {
  refresh();
}

std::shared_ptr<QLCategory> FolderListModel::folder(const QModelIndex& index) const {
  const auto row = static_cast<std::size_t>(index.row());
  return index.isValid() && row < folders_.size() ? folders_[row] : nullptr;
}

QModelIndex FolderListModel::indexOf(const QLCategory* folder) const {
  const auto found = std::ranges::find(folders_, folder, &std::shared_ptr<QLCategory>::get);
  return found == folders_.end() ? QModelIndex() : index(static_cast<int>(found - folders_.begin()));
}

int FolderListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(folders_.size());
}

QVariant FolderListModel::data(const QModelIndex& index, int role) const {
  const auto folder = this->folder(index);
  if (!folder) return {};
  switch (role) {
    case Qt::DisplayRole:
      return QStringLiteral("%1  (%2)")
          .arg(toQString(folder->title()))
          .arg(counts_[static_cast<std::size_t>(index.row())]);
    case Qt::EditRole:
      return toQString(folder->title());
    case Qt::DecorationRole:
      return symbol(
          QString::fromUtf8(folder->image().data(), static_cast<qsizetype>(folder->image().size())));
    default:
      return {};
  }
}

bool FolderListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const auto folder = this->folder(index);
  const auto title = value.toString().trimmed();
  if (!folder || role != Qt::EditRole || title.isEmpty()) return false;
  folder->setTitle(title.toStdU16String());
  return true;
}

// Only what the user has made can be renamed and dragged.
Qt::ItemFlags FolderListModel::flags(const QModelIndex& index) const {
  auto flags = QAbstractListModel::flags(index);
  const auto folder = this->folder(index);
  if (folder && takesSnippets(*folder)) flags |= Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
  if (folder && isDestinationOfMove(*folder)) flags |= Qt::ItemIsDropEnabled;
  return flags;
}

QStringList FolderListModel::mimeTypes() const {
  const auto snippets = QString::fromUtf8(kSnippetTypeIdentifier.data(), kSnippetTypeIdentifier.size());
  return {QStringLiteral("text/uri-list"), snippets};
}

QMimeData* FolderListModel::mimeData(const QModelIndexList& indexes) const {
  const auto folder = indexes.isEmpty() ? nullptr : this->folder(indexes.front());
  return folder ? new DraggedSnippets(context_, *folder) : nullptr;
}

bool FolderListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                      const QModelIndex& parent) const {
  const auto folder = this->folder(parent);
  if (!folder) return false;
  if (const auto* dragged = dynamic_cast<const DraggedSnippets*>(data)) {
    return !dragged->snippets().empty() && isDestinationOfMove(*folder);
  }
  return takesSnippets(*folder) && !droppedFiles(*data).empty();
}

bool FolderListModel::dropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                   const QModelIndex& parent) {
  const auto folder = this->folder(parent);
  if (!canDropMimeData(data, Qt::IgnoreAction, -1, -1, parent)) return false;
  if (const auto* dragged = dynamic_cast<const DraggedSnippets*>(data)) {
    Q_EMIT snippetsDropped(dragged->snippets(), folder);
  } else {
    Q_EMIT filesDropped(droppedFiles(*data), folder);
  }
  return true;
}

void FolderListModel::refresh() {
  auto found = context_.fetch<QLCategory>({.sortDescriptors = QLCategory::sortDescriptors()});
  auto folders = found ? std::move(found).value() : std::vector<std::shared_ptr<QLCategory>>();
  countSnippets(context_);
  std::vector<std::size_t> counts;
  for (const auto& each : folders) counts.push_back(each->numberOfSnippets());
  if (folders == folders_) {
    counts_ = std::move(counts);
    if (!folders_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    return;
  }
  beginResetModel();
  folders_ = std::move(folders);
  counts_ = std::move(counts);
  endResetModel();
}

}  // namespace quorlo
