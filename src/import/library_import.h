#pragma once

#include "base/date.h"
#include "base/life_token.h"
#include "base/result.h"
#include "import/import_data.h"
#include "import/import_options.h"
#include "import/import_report.h"
#include "import/snippet_importer.h"
#include "import/work_progress.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

namespace quorlo {

class BackgroundQueue;
class MainQueue;
class ManagedObjectContext;
class PersistenceController;

// Imports off the main thread into the library's file, in a context of its own and one transaction of the
// file, so that the program goes on meanwhile. The main context, which is saved before, takes the records in
// from the history like those of another process. One import at a time. Main thread.
class LibraryImport {
 public:
  struct Dependencies {
    MainQueue& mainQueue;
    BackgroundQueue& backgroundQueue;
    PersistenceController& persistence;
    std::filesystem::path storeFile;
    std::function<Date()> now;  // any thread
  };
  template <class Outcome>
  using Completion = std::function<void(Result<Outcome>)>;

  // The references outlive the import.
  explicit LibraryImport(Dependencies dependencies);
  LibraryImport(const LibraryImport&) = delete;
  LibraryImport& operator=(const LibraryImport&) = delete;
  // Cancels what is under way and waits for it; no completion is called.
  ~LibraryImport();

  bool isRunning() const;

  // Each calls the completion once, on the main thread and never inside the call; with an error when
  // something else is running.
  void importData(std::shared_ptr<const ImportData> data, ImportOptions options,
                  Completion<ImportReport> completion);
  void importFiles(std::vector<std::filesystem::path> files, ImportOptions options,
                   Completion<ImportReport> completion);
  void undo(ImportReport report, Completion<UndoneImport> completion);

  // Of what is running, or ran last.
  const WorkProgress& progress() const;
  // The completion is called with an error and nothing has changed. Too late, it does nothing.
  void cancel();

 private:
  struct Work;

  Dependencies its_;
  std::shared_ptr<Work> work_;
  LifeToken life_;
};

}  // namespace quorlo
