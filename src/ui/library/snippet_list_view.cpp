#include "ui/library/snippet_list_view.h"

#include "app/settings/settings_controller.h"
#include "store/records/ql_snippet.h"
#include "ui/library/snippet_list_model.h"
#include "ui/qt_text.h"

#include <QDrag>
#include <QHeaderView>
#include <QIcon>
#include <QMimeData>

#include <utility>

namespace quorlo {

SnippetListView::SnippetListView(SnippetListModel& model, SettingsController& settings)
    : snippets_(model), settings_(settings) {
  setModel(&snippets_);
  setAccessibleName(localizedText(u"Snippets"));
  setRootIsDecorated(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setDragDropMode(QAbstractItemView::DragOnly);
  showSortation();  // first: the list sorts by what its header shows, which changes the setting
  setSortingEnabled(true);
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(SnippetListModel::titleColumn, QHeaderView::Stretch);
  const auto width = [this](const char* sample) {
    return header()->fontMetrics().horizontalAdvance(QLatin1String(sample)) + 24;
  };
  header()->resizeSection(SnippetListModel::abbreviationColumn, width("Abbreviation"));
  header()->resizeSection(SnippetListModel::modifiedColumn, width("00/00/0000"));
  header()->resizeSection(SnippetListModel::usesColumn, width("Used"));
  showUseCounts();
}

void SnippetListView::showSortation() {
  header()->setSortIndicator(
      SnippetListModel::sortColumn(settings_.snippetsSortOption()),
      settings_.ascendingSnippetSortation() ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void SnippetListView::showUseCounts() {
  setColumnHidden(SnippetListModel::usesColumn, !settings_.showSnippetUseCount());
}

std::vector<std::shared_ptr<QLSnippet>> SnippetListView::selectedSnippets() const {
  std::vector<std::shared_ptr<QLSnippet>> selected;
  for (const auto& each : selectionModel()->selectedRows()) {
    if (auto snippet = snippets_.snippet(each)) selected.push_back(std::move(snippet));
  }
  return selected;
}

void SnippetListView::select(const std::vector<std::shared_ptr<QLSnippet>>& snippets) {
  QItemSelection rows;
  for (const auto& each : snippets) {
    if (const auto index = snippets_.indexOf(each.get()); index.isValid()) rows.select(index, index);
  }
  using Flag = QItemSelectionModel::SelectionFlag;
  selectionModel()->select(rows, Flag::ClearAndSelect | Flag::Rows);
  if (rows.isEmpty()) return;
  selectionModel()->setCurrentIndex(rows.first().topLeft(), Flag::NoUpdate);
  scrollTo(rows.first().topLeft());
}

// A folder moves what it is given, other programs copy it. The picture is small so that it hides no folder.
void SnippetListView::startDrag(Qt::DropActions actions) {
  const auto selected = selectedIndexes();
  auto* const dragged = snippets_.mimeData(selected);
  if (dragged == nullptr) return;
  const auto title = selected.front().siblingAtColumn(SnippetListModel::titleColumn);
  auto* const drag = new QDrag(this);
  drag->setMimeData(dragged);
  drag->setPixmap(title.data(Qt::DecorationRole).value<QIcon>().pixmap(24));
  drag->exec(actions, Qt::MoveAction);
}

}  // namespace quorlo
