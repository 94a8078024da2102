#include "ui/library/library_window.h"

#include "app/settings/settings_controller.h"
#include "app/shell/menu/navigation_model.h"
#include "store/context/managed_object_context.h"
#include "store/library_editing.h"
#include "store/records/folder_types.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/snippet_type.h"
#include "ui/library/folder_list_model.h"
#include "ui/library/snippet_list_model.h"
#include "ui/library/snippet_list_view.h"
#include "ui/qt_text.h"
#include "ui/symbols.h"

#include <QAbstractButton>
#include <QAction>
#include <QCloseEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSplitter>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

bool isTrash(const std::shared_ptr<QLCategory>& folder) {
  return folder && folder->type() == static_cast<std::int64_t>(CategoryType::Trash);
}

bool confirmed(QWidget* window, const QString& question, std::u16string_view button) {
  QMessageBox box(QMessageBox::Question, QString(), question, QMessageBox::Cancel, window);
  const QPushButton* const yes = box.addButton(localizedText(button), QMessageBox::DestructiveRole);
  box.exec();
  return box.clickedButton() == static_cast<const QAbstractButton*>(yes);
}

}  // namespace

LibraryWindow::LibraryWindow(Dependencies dependencies)
    : parts_(std::move(dependencies)),
      folders_(new FolderListModel(parts_.context, this)),
      snippets_(new SnippetListModel(parts_.context, parts_.settings, this)),
      folderList_(new QListView),
      snippetList_(new SnippetListView(*snippets_, parts_.settings)),
      search_(new QLineEdit),
      form_(new SnippetForm(parts_.validate, parts_.advise)),
      files_(new LibraryFiles(*this, parts_.files, [this] { return exportOffer(); })) {
  setWindowTitle(QStringLiteral("Quorlo"));
  resize(980, 600);
  makeViews();
  makeActions();
  libraryChanges_ = parts_.context.observeObjectsDidChange([this](const ChangeSet&) {
    if (isVisible()) refresh();
  });
  settingsChanges_ = parts_.settings.observe([this](Setting changed) {
    const bool changesOrder =
        changed == Setting::snippetsSortOption || changed == Setting::ascendingSnippetSortation;
    if (changesOrder && isVisible() && !isFollowing_) refresh();
    if (changed == Setting::showSnippetUseCount) snippetList_->showUseCounts();
  });
  form_->setShowsFormatBar(parts_.settings.showFormatInspector());
  parts_.settings.setFormatBarHandler([this](bool shown) { form_->setShowsFormatBar(shown); });
  navigationChanges_ = parts_.navigation.observe([this](NavigationModel::Change) {
    if (!isFollowing_) followNavigation();
  });
  restoreSelection();
  followNavigation();
}

LibraryWindow::~LibraryWindow() {
  parts_.settings.setFormatBarHandler(nullptr);
}

bool LibraryWindow::commitEditing() {
  if (form_->takeOver()) return true;
  showNormal();
  activateWindow();
  return false;
}

void LibraryWindow::showEvent(QShowEvent* event) {
  refresh();
  QMainWindow::showEvent(event);
}

void LibraryWindow::closeEvent(QCloseEvent* event) {
  form_->takeOver();
  if (isVisible()) parts_.settings.setNumberOfEditorCloses(parts_.settings.numberOfEditorCloses() + 1);
  QMainWindow::closeEvent(event);
}

void LibraryWindow::makeViews() {
  folderList_->setModel(folders_);
  folderList_->setObjectName(QStringLiteral("folders"));
  folderList_->setAccessibleName(localizedText(u"Folders"));
  folderList_->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
  folderList_->setContextMenuPolicy(Qt::ActionsContextMenu);
  folderList_->setDragDropMode(QAbstractItemView::DragDrop);
  folderList_->setDragDropOverwriteMode(true);  // onto folders, not between them
  connect(folders_, &FolderListModel::filesDropped, files_, &LibraryFiles::importInto);
  connect(folders_, &FolderListModel::snippetsDropped, this,
          [this](const auto& snippets, const auto& folder) {
            form_->takeOver();
            moveSnippets(snippets, *folder);
          });
  connect(folderList_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          &LibraryWindow::userChoseFolder);

  snippetList_->setObjectName(QStringLiteral("snippets"));
  snippetList_->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(snippetList_, &QWidget::customContextMenuRequested, this, &LibraryWindow::showMenuOfList);
  connect(snippetList_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &LibraryWindow::userChoseSnippets);

  search_->setPlaceholderText(localizedText(u"Search"));
  search_->setObjectName(QStringLiteral("search"));
  search_->setClearButtonEnabled(true);
  search_->addAction(symbol(u"magnifyingglass"), QLineEdit::LeadingPosition);
  connect(search_, &QLineEdit::textChanged, this, &LibraryWindow::search);

  auto* const middle = new QWidget;
  auto* const column = new QVBoxLayout(middle);
  column->setContentsMargins({});
  column->addWidget(search_);
  column->addWidget(snippetList_);
  auto* const splitter = new QSplitter;
  splitter->addWidget(folderList_);
  splitter->addWidget(middle);
  splitter->addWidget(form_);
  splitter->setSizes({190, 380, 410});
  setCentralWidget(splitter);
}

QAction* LibraryWindow::addAction(const char* icon, std::u16string_view name, const QKeySequence& keys,
                                  void (LibraryWindow::*act)()) {
  auto* const action = new QAction(symbol(QString::fromLatin1(icon)), localizedText(name), this);
  action->setShortcut(keys);
  connect(action, &QAction::triggered, this, act);
  QMainWindow::addAction(action);
  return action;
}

void LibraryWindow::makeActions() {
  auto* const bar = addToolBar(localizedText(u"Library"));
  bar->setMovable(false);
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar->addAction(addAction("plus", u"New Snippet", QKeySequence::New, &LibraryWindow::newSnippet));
  duplicate_ = addAction("doc.on.doc", u"Duplicate", Qt::CTRL | Qt::Key_D, &LibraryWindow::duplicateSnippets);
  trash_ = addAction("trash", u"Move to Trash", Qt::CTRL | Qt::Key_Backspace, &LibraryWindow::moveToTrash);
  restore_ = addAction("arrow.uturn.backward", u"Put Back", {}, &LibraryWindow::restore);
  emptyTrash_ = addAction("xmark.circle", u"Empty Trash…", {}, &LibraryWindow::emptyTrash);
  bar->addActions({duplicate_, trash_, restore_, emptyTrash_});
  bar->addSeparator();
  auto* const newFolder = addAction("folder.badge.plus", u"New Folder", Qt::CTRL | Qt::SHIFT | Qt::Key_N,
                                    &LibraryWindow::newFolder);
  bar->addAction(newFolder);
  files_->addMenuTo(*bar);
  auto* const settings =
      bar->addAction(symbol(u"gearshape"), localizedText(u"Settings"), this, parts_.showSettings);
  settings->setShortcut(QKeySequence::Preferences);

  renameFolder_ = addAction("pencil", u"Rename", {}, &LibraryWindow::renameFolder);
  deleteFolder_ = addAction("trash", u"Delete Folder…", {}, &LibraryWindow::deleteFolder);
  folderList_->addActions({newFolder, renameFolder_, deleteFolder_});

  auto* const find = new QAction(this);
  find->setShortcut(QKeySequence::Find);
  connect(find, &QAction::triggered, search_, [this] { search_->setFocus(); });
  QMainWindow::addAction(find);
}

void LibraryWindow::newSnippet() {
  auto folder = parts_.navigation.selectedCategory();
  if (isTrash(folder)) folder = nullptr;
  const auto format = static_cast<std::int64_t>(parts_.settings.defaultSnippetFormat());
  search_->clear();
  parts_.navigation.select(addSnippet(parts_.context, folder.get(), format));
  form_->focusTitle();
}

void LibraryWindow::duplicateSnippets() {
  std::vector<std::shared_ptr<QLSnippet>> copies;
  for (const auto& each : snippetList_->selectedSnippets()) copies.push_back(duplicate(*each));
  refresh();
  parts_.navigation.setSelectedSnippets(std::move(copies));
}

void LibraryWindow::moveToTrash() {
  form_->takeOver();
  for (const auto& each : snippetList_->selectedSnippets()) each->moveToTrash();
}

void LibraryWindow::restore() {
  for (const auto& each : snippetList_->selectedSnippets()) each->restoreFromTrash();
}

void LibraryWindow::emptyTrash() {
  const auto trashed = parts_.context.fetch<QLSnippet>({.predicate = QLSnippet::kDeletionDate.isNotNil()});
  if (!trashed || trashed.value().empty()) return;
  const auto question = localizedText(u"Delete all snippets in the trash? This cannot be undone.");
  if (!confirmed(this, question, u"Delete")) return;
  for (const auto& each : trashed.value()) parts_.context.deleteObject(*each);
}

void LibraryWindow::newFolder() {
  const auto folder = addFolder(parts_.context, parts_.untitledFolderName());
  refresh();
  parts_.navigation.setSelectedCategory(folder);
  renameFolder();
}

void LibraryWindow::renameFolder() {
  folderList_->edit(folderList_->currentIndex());
}

void LibraryWindow::deleteFolder() {
  const auto folder = parts_.navigation.selectedCategory();
  if (!folder || !takesSnippets(*folder)) return;
  const auto question = localizedText(u"Delete the folder “%@”? Its snippets stay in All Snippets.")
                            .replace(QStringLiteral("%@"), toQString(folder->title()));
  if (!folder->snippets().empty() && !confirmed(this, question, u"Delete")) return;
  parts_.navigation.setSelectedCategory(nullptr);
  parts_.context.deleteObject(*folder);
}

void LibraryWindow::search() {
  if (isFollowing_) return;
  snippets_->show(parts_.navigation.selectedCategory(), search_->text().toStdU16String());
  showSelection();
}

void LibraryWindow::showMenuOfList(const QPoint& place) {
  QMenu menu;
  menu.addActions({duplicate_, trash_, restore_});
  auto* const moveTo = menu.addMenu(symbol(u"folder"), localizedText(u"Move to"));
  const auto add = [&](const QString& title, std::shared_ptr<QLCategory> folder) {
    moveTo->addAction(title, this, [this, folder = std::move(folder)] {
      for (const auto& each : snippetList_->selectedSnippets()) each->setCategory(folder.get());
    });
  };
  add(localizedText(u"No Folder"), nullptr);
  for (int row = 0; row < folders_->rowCount(); ++row) {
    const auto folder = folders_->folder(folders_->index(row));
    if (takesSnippets(*folder)) add(toQString(folder->title()), folder);
  }
  moveTo->setEnabled(trash_->isEnabled());
  menu.exec(snippetList_->viewport()->mapToGlobal(place));
}

// Takes over what has changed in the library, keeping the selection.
void LibraryWindow::refresh() {
  {
    const QScopedValueRollback following(isFollowing_, true);
    folders_->refresh();
    snippets_->refresh();
  }
  followNavigation();
}

void LibraryWindow::restoreSelection() {
  if (parts_.navigation.selectedCategory()) return;
  std::shared_ptr<QLCategory> chosen;
  const auto uuid = parts_.settings.selectedCategoryUUID();
  for (int row = 0; row < folders_->rowCount(); ++row) {
    auto folder = folders_->folder(folders_->index(row));
    if (!chosen || folder->uuid() == uuid) chosen = std::move(folder);
  }
  parts_.navigation.setSelectedCategory(chosen);
  const auto uuids = parts_.settings.selectedSnippetUUIDs();
  std::vector<std::shared_ptr<QLSnippet>> snippets;
  for (const auto& each : uuids) {
    if (auto found = parts_.context.recordOfUuid<QLSnippet>(each)) snippets.push_back(std::move(found));
  }
  parts_.navigation.setSelectedSnippets(std::move(snippets));
}

// The views show what the navigation model says.
void LibraryWindow::followNavigation() {
  const QScopedValueRollback following(isFollowing_, true);
  const auto folder = parts_.navigation.selectedCategory();
  folderList_->setCurrentIndex(folders_->indexOf(folder.get()));
  snippets_->show(folder, search_->text().toStdU16String());
  snippetList_->showSortation();
  showSelection();
}

void LibraryWindow::showSelection() {
  const QScopedValueRollback following(isFollowing_, true);
  const auto selected = parts_.navigation.selectedSnippets();
  snippetList_->select(selected);
  form_->setSnippet(selected.size() == 1 ? selected.front() : nullptr);
  enableActions();
}

void LibraryWindow::userChoseFolder(const QModelIndex& index) {
  if (isFollowing_) return;
  parts_.navigation.setSelectedCategory(folders_->folder(index));
}

void LibraryWindow::userChoseSnippets() {
  if (isFollowing_) return;
  const QScopedValueRollback following(isFollowing_, true);
  const auto selected = snippetList_->selectedSnippets();
  parts_.navigation.setSelectedSnippets(selected);
  form_->setSnippet(selected.size() == 1 ? selected.front() : nullptr);
  enableActions();
}

void LibraryWindow::enableActions() {
  const auto selected = snippetList_->selectedSnippets();
  const bool some = !selected.empty();
  const bool trashed = some && std::ranges::all_of(selected, [](const auto& each) {
                         return each->deletionDate().has_value();
                       });
  const auto folder = parts_.navigation.selectedCategory();
  duplicate_->setEnabled(some && !trashed);
  trash_->setEnabled(some && !trashed);
  trash_->setVisible(!isTrash(folder));
  restore_->setEnabled(trashed);
  restore_->setVisible(isTrash(folder));
  emptyTrash_->setVisible(isTrash(folder));
  const bool isOwn = folder && takesSnippets(*folder);
  renameFolder_->setEnabled(isOwn);
  deleteFolder_->setEnabled(isOwn);
}

ExportOffer LibraryWindow::exportOffer() const {
  ExportOffer offer;
  if (const auto folder = parts_.navigation.selectedCategory()) {
    offer.folder = {folder->uuid(), toQString(folder->title())};
  }
  for (const auto& each : snippetList_->selectedSnippets()) offer.snippets.push_back(each->uuid());
  return offer;
}

}  // namespace quorlo
