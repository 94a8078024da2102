#pragma once

#include "base/subscription.h"
#include "ui/library/library_files.h"
#include "ui/library/snippet_form.h"

#include <QMainWindow>

#include <functional>
#include <string>

class QAction;
class QLineEdit;
class QListView;
class QModelIndex;

namespace quorlo {

class FolderListModel;
class ManagedObjectContext;
class NavigationModel;
class SettingsController;
class SnippetListModel;
class SnippetListView;

// The library: folders, the snippets of the selected one, and one snippet to edit. Follows the navigation
// model and writes the user's selection into it. Made hidden; closing hides it.
class LibraryWindow final : public QMainWindow {
  Q_OBJECT

 public:
  struct Dependencies {
    ManagedObjectContext& context;
    SettingsController& settings;
    NavigationModel& navigation;
    SnippetForm::Validation validate;
    SnippetForm::Validation advise;                      // of the form; may be null
    std::function<std::u16string()> untitledFolderName;  // one that no folder has
    std::function<void()> showSettings;
    LibraryFileServices files;
  };

  // The dependencies outlive the window.
  explicit LibraryWindow(Dependencies dependencies);
  ~LibraryWindow() override;

  // As SnippetForm::takeOver; what cannot be taken over is brought to the user's eyes.
  bool commitEditing();

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void makeActions();
  void makeViews();
  QAction* addAction(const char* icon, std::u16string_view name, const QKeySequence& keys,
                     void (LibraryWindow::*act)());

  void newSnippet();
  void duplicateSnippets();
  void moveToTrash();
  void restore();
  void emptyTrash();
  void newFolder();
  void renameFolder();
  void deleteFolder();
  void search();
  void showMenuOfList(const QPoint& place);

  void refresh();
  void restoreSelection();
  void followNavigation();
  void userChoseFolder(const QModelIndex& index);
  void userChoseSnippets();
  void showSelection();
  void enableActions();
  ExportOffer exportOffer() const;

  Dependencies parts_;
  FolderListModel* folders_;
  SnippetListModel* snippets_;
  QListView* folderList_;
  SnippetListView* snippetList_;
  QLineEdit* search_;
  SnippetForm* form_;
  LibraryFiles* files_;
  QAction* duplicate_ = nullptr;
  QAction* trash_ = nullptr;
  QAction* restore_ = nullptr;
  QAction* emptyTrash_ = nullptr;
  QAction* renameFolder_ = nullptr;
  QAction* deleteFolder_ = nullptr;
  bool isFollowing_ = false;  // the views are being set, not used
  Subscription libraryChanges_;
  Subscription navigationChanges_;
  Subscription settingsChanges_;
};

}  // namespace quorlo
