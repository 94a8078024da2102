#pragma once

#include "base/date.h"
#include "base/life_token.h"
#include "base/result.h"
#include "base/subscription.h"
#include "import/import_data.h"
#include "import/import_options.h"
#include "import/import_report.h"
#include "import/snippet_importer.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

namespace quorlo {

class BackgroundQueue;
class MainQueue;
class ManagedObjectContext;
class PersistenceController;
class WorkProgress;

// Imports off the main thread into the library's file, in a context of its own and one transaction of the
// file, so that the program goes on meanwhile. The main context takes the records in from the history, like
// those of another process. One piece of work at a time. Main thread.
class LibraryImport {
 public:
  struct Dependencies {
    MainQueue& mainQueue;
    BackgroundQueue& backgroundQueue;
    PersistenceController& persistence;
    std::filesystem::path storeFile;  // exists
    std::function<Date()> now;        // any thread
  };
  template <class Outcome>
  using Completion = std::function<void(const Result<Outcome>&)>;

  // The references outlive the import.
  explicit LibraryImport(Dependencies dependencies);
  LibraryImport(const LibraryImport&) = delete;
  LibraryImport& operator=(const LibraryImport&) = delete;
  ~LibraryImport();  // stops, and completes nothing any more

  // What is unsaved in the main context is saved first; where that fails nothing is imported. Each calls its
  // completion once, in a later turn of the main queue; with an error when something is under way already.
  void importData(std::shared_ptr<const ImportData> data, ImportOptions options,
                  Completion<ImportReport> completion);
  void importFiles(std::vector<std::filesystem::path> files, ImportOptions options,
                   Completion<ImportReport> completion);
  void undo(std::shared_ptr<const ImportReport> report, Completion<UndoneImport> completion);

  bool isRunning() const { return isRunning_; }
  const WorkProgress& progress() const;  // of what is under way or, until the next, was

  // What is under way comes to nothing and completes with an error. Where it has been saved already it
  // completes as if nobody had asked.
  void cancel();
  // The same, and waits until nothing holds the file any more.
  void stop();

 private:
  class Work;
  template <class Outcome>
  using Operation = std::function<Result<Outcome>(ManagedObjectContext& context, WorkProgress& progress)>;

  std::function<Result<ImportReport>(Result<ImportReport>)> remembering() const;
  template <class Outcome>
  void start(Operation<Outcome> operation, Completion<Outcome> completion);
  template <class Outcome>
  void completeLater(Error error, Completion<Outcome> completion);

  const Dependencies its_;
  std::shared_ptr<Work> work_;
  bool isRunning_ = false;
  Subscription deferral_;  // of the main context's saves
  LifeToken life_;
};

}  // namespace quorlo
