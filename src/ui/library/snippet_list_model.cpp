#include "ui/library/snippet_list_model.h"

#include "app/settings/settings_controller.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "ui/library/dragged_snippets.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <array>
#include <utility>

namespace quorlo {
namespace {

constexpr std::array kColumnOptions{SnippetSortOption::title, SnippetSortOption::abbreviation,
                                    SnippetSortOption::modificationDate, SnippetSortOption::useCount};

QString shortDate(const std::optional<Date>& date) {
  if (!date) return {};
  const auto since = std::chrono::floor<std::chrono::milliseconds>(date->time_since_epoch()).count();
  return QLocale().toString(QDateTime::fromMSecsSinceEpoch(since).date(), QLocale::ShortFormat);
}

QIcon typeSymbol(const QLSnippet& snippet) {
  const auto name = symbolName(snippet.type().value_or(SnippetType::plainText));
  return symbol(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
}

Predicate shownBy(const QLCategory& folder, const std::u16string& searchText) {
  if (searchText.empty()) return folder.predicate();
  return Predicate::all(
      {folder.predicate().inParentheses(),
       Predicate::any({QLSnippet::kTitle.contains(searchText), QLSnippet::kAbbreviation.contains(searchText),
                       QLSnippet::kPlainText.contains(searchText)})
           .inParentheses()});
}

}  // namespace

SnippetListModel::SnippetListModel(ManagedObjectContext& context, SettingsController& settings,
                                   QObject* parent)
    : QAbstractTableModel(parent), context_(context), settings_(settings) {}

void SnippetListModel::show(std::shared_ptr<QLCategory> folder, const std::u16string& searchText) {
  folder_ = std::move(folder);
  searchText_ = searchText;
  refresh();
}

void SnippetListModel::refresh() {
  std::vector<std::shared_ptr<QLSnippet>> snippets;
  if (folder_ && !folder_->isDeleted()) {
    auto found = context_.fetch<QLSnippet>(
        {.predicate = shownBy(*folder_, searchText_),
         .sortDescriptors = settings_.sortDescriptorsFor(settings_.snippetsSortOption())});
    if (found) snippets = std::move(found).value();
  }
  if (snippets == snippets_) {
    if (!snippets_.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    return;
  }
  beginResetModel();
  snippets_ = std::move(snippets);
  endResetModel();
}

std::shared_ptr<QLSnippet> SnippetListModel::snippet(const QModelIndex& index) const {
  const auto row = static_cast<std::size_t>(index.row());
  return index.isValid() && row < snippets_.size() ? snippets_[row] : nullptr;
}

QModelIndex SnippetListModel::indexOf(const QLSnippet* snippet) const {
  const auto found = std::ranges::find(snippets_, snippet, &std::shared_ptr<QLSnippet>::get);
  return found == snippets_.end() ? QModelIndex() : index(static_cast<int>(found - snippets_.begin()), 0);
}

SnippetSortOption SnippetListModel::sortOption(int column) {
  return kColumnOptions.at(static_cast<std::size_t>(column));
}

int SnippetListModel::sortColumn(SnippetSortOption option) {
  const auto* const found = std::ranges::find(kColumnOptions, option);
  return found == kColumnOptions.end() ? -1 : static_cast<int>(found - kColumnOptions.begin());
}

int SnippetListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(snippets_.size());
}

int SnippetListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columnCount_;
}

QVariant SnippetListModel::data(const QModelIndex& index, int role) const {
  const auto snippet = this->snippet(index);
  if (!snippet) return {};
  if (role == Qt::TextAlignmentRole && index.column() == usesColumn)
    return int(Qt::AlignRight | Qt::AlignVCenter);
  if (role == Qt::DecorationRole && index.column() == titleColumn) return typeSymbol(*snippet);
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case titleColumn:
      return toQString(snippet->displayTitle());
    case abbreviationColumn:
      return toQString(snippet->abbreviation());
    case modifiedColumn:
      return shortDate(snippet->modifiedDate() ? snippet->modifiedDate() : snippet->creationDate());
    default:
      return QLocale().toString(static_cast<qlonglong>(snippet->useCount()));
  }
}

QVariant SnippetListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  constexpr std::array<std::u16string_view, columnCount_> kNames{u"Title", u"Abbreviation", u"Modified",
                                                                 u"Used"};
  return localizedText(kNames.at(static_cast<std::size_t>(section)));
}

Qt::ItemFlags SnippetListModel::flags(const QModelIndex& index) const {
  return QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled;
}

QMimeData* SnippetListModel::mimeData(const QModelIndexList& indexes) const {
  std::vector<std::shared_ptr<QLSnippet>> dragged;
  for (const auto& each : indexes) {
    if (each.column() != titleColumn) continue;
    if (auto snippet = this->snippet(each)) dragged.push_back(std::move(snippet));
  }
  return dragged.empty() ? nullptr : new DraggedSnippets(std::move(dragged));
}

void SnippetListModel::sort(int column, Qt::SortOrder order) {
  if (column < 0) return;
  settings_.setSnippetsSortOption(sortOption(column));
  settings_.setAscendingSnippetSortation(order == Qt::AscendingOrder);
  refresh();
}

}  // namespace quorlo
