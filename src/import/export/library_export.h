#pragma once

#include "base/life_token.h"
#include "base/result.h"
#include "import/export/export_report.h"
#include "import/export/export_selection.h"
#include "import/work_progress.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace quorlo {

class BackgroundQueue;
class MainQueue;
class ManagedObjectContext;

// Exports off the main thread, out of a context of its own over the library's file, so that the program goes
// on meanwhile. Main thread. One export at a time.
class LibraryExport {
 public:
  // Makes a context that holds what is saved; called on a background thread, which then has it to itself.
  using OpenContext = std::function<Result<std::unique_ptr<ManagedObjectContext>>()>;
  using Completion = std::function<void(const Result<ExportReport>&)>;

  struct Dependencies {
    MainQueue& mainQueue;
    BackgroundQueue& backgroundQueue;
    ManagedObjectContext& mainContext;
    OpenContext openContext;
  };

  // The references outlive the export.
  explicit LibraryExport(Dependencies dependencies);
  LibraryExport(const LibraryExport&) = delete;
  LibraryExport& operator=(const LibraryExport&) = delete;
  ~LibraryExport();  // cancels, and completes nothing any more

  // Saves the main context's changes, so that they are exported too, and writes the file, whole or not at
  // all. `completion` is called in a later turn of the main queue, after a cancellation with an error.
  // Nothing may be under way.
  void start(ExportSelection selection, ExportFormat format, std::filesystem::path file,
             Completion completion);

  bool isRunning() const { return isRunning_; }
  // Of the present export, or the last one; never null.
  std::shared_ptr<WorkProgress> progress() const { return progress_; }
  void cancel() { progress_->cancel(); }

 private:
  Dependencies its_;
  std::shared_ptr<WorkProgress> progress_ = std::make_shared<WorkProgress>();
  bool isRunning_ = false;
  LifeToken life_;
};

}  // namespace quorlo
