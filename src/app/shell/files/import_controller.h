#pragma once

#include "base/observers.h"
#include "base/result.h"
#include "base/subscription.h"
#include "import/import_data.h"
#include "import/import_options.h"
#include "import/import_report.h"
#include "import/snippet_importer.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {

class BackgroundQueue;
class ImportView;
class LibraryImport;
class MainQueue;
class NavigationModel;
class PersistenceController;
class QLCSVOptionsViewController;
class SettingsController;

// Leads the user through an import: tables by way of their options, other files at once, then the report,
// from which the import can be undone. What comes meanwhile waits until that report is closed; one that is
// shown already gives way. One instance; main thread.
class ImportController {
 public:
  struct Dependencies {
    MainQueue& queue;
    BackgroundQueue& background;
    const SettingsController& settings;
    PersistenceController& persistence;
    NavigationModel& navigation;
    LibraryImport& libraryImport;
    ImportView& view;
  };

  // The references outlive the controller.
  explicit ImportController(const Dependencies& dependencies);
  ImportController(const ImportController&) = delete;
  ImportController& operator=(const ImportController&) = delete;
  ~ImportController();

  // Files that were opened with the program, dropped on it (then perhaps on a folder) or chosen.
  void importFiles(const std::vector<std::filesystem::path>& files, const ImportOptions& options = {});

  // The last import of this run that has not been undone.
  bool canUndo() const { return lastImport_ != nullptr && !isBusy(); }
  void undoImport();

  // Called after canUndo() may have changed.
  Subscription observe(std::function<void()> changed) { return observers_.add(std::move(changed)); }

 private:
  struct Job {
    std::vector<std::filesystem::path> files;
    ImportOptions options;
    bool isTables = false;
  };
  enum class Stage { idle, options, working, report, message };

  bool isBusy() const { return stage_ == Stage::options || stage_ == Stage::working; }
  void setStage(Stage stage);
  void beginNext();
  void showOptions(const Job& job);
  void importRecords(std::shared_ptr<const ImportData> records, const ImportOptions& options);
  void didImport(const Result<ImportReport>& report);
  void didUndo(const Result<UndoneImport>& undone);
  void showMessage(const std::u16string& message, const std::u16string& informativeText);
  void saveReport(const std::filesystem::path& file);
  void showImported();
  bool selectImported();
  void close();

  const Dependencies its_;
  std::deque<Job> jobs_;
  Stage stage_ = Stage::idle;
  std::unique_ptr<QLCSVOptionsViewController> options_;
  std::shared_ptr<const ImportReport> report_;      // the one shown
  std::shared_ptr<const ImportReport> lastImport_;  // the one to undo
  Subscription arrival_;                            // of what was imported, in the main context
  Observers<> observers_;
};

}  // namespace quorlo
