#pragma once

#include "base/result.h"
#include "base/subscription.h"
#include "store/backup/library_backups.h"

#include <QDialog>

#include <filesystem>
#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QPushButton;
class QTreeWidget;

namespace quorlo {

class SettingsController;
class Workspace;

// What the window of backups uses; all of it outlives the window.
struct BackupsWindowServices {
  LibraryBackups& backups;
  SettingsController& settings;
  Workspace& workspace;
  // Saves what is edited and what has changed.
  std::function<Status()> saveLibrary;
  std::function<void(const std::filesystem::path& backup,
                     std::function<void(const Result<RestoredLibrary>&)> completion)>
      restore;
};

// The rolling copies of the library: their dates and sizes, one more of them, and the way back to one. Made
// hidden; closing hides it.
class BackupsWindow final : public QDialog {
 public:
  explicit BackupsWindow(BackupsWindowServices services);
  ~BackupsWindow() override;

  void present();

 private:
  void makeViews();
  void refresh();
  void show(const std::vector<LibraryBackups::Listed>& backups);
  void backUp();
  void askToRestore();
  void restore(const std::filesystem::path& backup);
  void openFolder();
  void setIsBusy(bool isBusy);
  void complain(const QString& what, const Error& error);

  BackupsWindowServices services_;
  std::vector<LibraryBackups::Listed> shown_;
  QTreeWidget* list_;
  QLabel* notice_;
  QCheckBox* keeps_;
  QPushButton* restore_;
  QPushButton* backUp_;
  bool isBusy_ = false;
  Subscription settingsChanges_;
};

}  // namespace quorlo
