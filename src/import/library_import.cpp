#include "import/library_import.h"

#include "base/localized.h"
#include "base/log.h"
#include "import/file_bytes.h"
#include "import/file_import.h"
#include "import/last_import.h"
#include "import/work_progress.h"
#include "platform/background_queue.h"
#include "platform/main_queue.h"
#include "store/context/background_context.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "text/utf.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

namespace quorlo {

// Shared by the two threads.
class LibraryImport::Work {
 public:
  WorkProgress progress;

  // False when nobody waits for it any more.
  bool begin() {
    const std::lock_guard lock(mutex_);
    if (state_ == State::over) return false;
    state_ = State::running;
    return true;
  }

  void end() {
    const std::lock_guard lock(mutex_);
    state_ = State::over;
    changed_.notify_all();
  }

  // It has no effect any more; what has begun is waited for.
  void stop() {
    progress.cancel();
    std::unique_lock lock(mutex_);
    waitUntilOver(lock);
  }

  // The same, and what has not begun never will.
  void abandon() {
    progress.cancel();
    std::unique_lock lock(mutex_);
    waitUntilOver(lock);
    state_ = State::over;
  }

 private:
  enum class State { waiting, running, over };

  void waitUntilOver(std::unique_lock<std::mutex>& lock) {
    changed_.wait(lock, [this] { return state_ != State::running; });
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  State state_ = State::waiting;
};

LibraryImport::LibraryImport(Dependencies dependencies)
    : its_(std::move(dependencies)), work_(std::make_shared<Work>()) {}

LibraryImport::~LibraryImport() {
  work_->abandon();
}

void LibraryImport::importData(std::shared_ptr<const ImportData> data, ImportOptions options,
                               Completion<ImportReport> completion) {
  start<ImportReport>(
      [remembered = remembering(), data = std::move(data), options = std::move(options)](auto& context,
                                                                                         auto& progress) {
        return remembered(importSnippets(*data, options, context, progress));
      },
      std::move(completion));
}

void LibraryImport::importFiles(std::vector<std::filesystem::path> files, ImportOptions options,
                                Completion<ImportReport> completion) {
  start<ImportReport>(
      [remembered = remembering(), files = std::move(files), options = std::move(options)](auto& context,
                                                                                           auto& progress) {
        return remembered(quorlo::importFiles(files, std::nullopt, options, context, progress));
      },
      std::move(completion));
}

void LibraryImport::undo(std::shared_ptr<const ImportReport> report, Completion<UndoneImport> completion) {
  start<UndoneImport>(
      [report = std::move(report), folder = its_.storeFile.parent_path()](auto& context, auto& progress) {
        auto undone = undoImport(*report, context, progress);
        if (undone) forgetImport(folder);
        return undone;
      },
      std::move(completion));
}

// For the command line, which can undo it as well.
std::function<Result<ImportReport>(Result<ImportReport>)> LibraryImport::remembering() const {
  return [folder = its_.storeFile.parent_path()](Result<ImportReport> report) {
    if (!report) return report;
    if (const auto status = rememberImport(report.value(), folder); !status) {
      logWarning("WARNING: #imp3Rmb - " + status.error().message);
    }
    return report;
  };
}

const WorkProgress& LibraryImport::progress() const {
  return work_->progress;
}

void LibraryImport::cancel() {
  work_->progress.cancel();
}

void LibraryImport::stop() {
  work_->stop();
}

template <class Outcome>
void LibraryImport::start(Operation<Outcome> operation, Completion<Outcome> completion) {
  if (isRunning_) {
    return completeLater<Outcome>(
        {toUtf8(localized(u"Another import is under way. Try again when it is done."))},
        std::move(completion));
  }
  if (const auto saved = its_.persistence.managedObjectContext().save(); !saved) {
    return completeLater<Outcome>(saved.error(), std::move(completion));
  }
  isRunning_ = true;
  work_ = std::make_shared<Work>();
  deferral_ = its_.persistence.deferSaves();
  const Completion<Outcome> complete =
      life_.guard([this, completion = std::move(completion)](const Result<Outcome>& outcome) {
        isRunning_ = false;
        deferral_.reset();
        completion(outcome);
      });
  its_.backgroundQueue.run([work = work_, storeFile = its_.storeFile, now = its_.now,
                            &mainQueue = its_.mainQueue, operation = std::move(operation), complete] {
    if (!work->begin()) return;
    const auto perform = [&]() -> Result<Outcome> {
      if (work->progress.isCancelled()) return importWasCancelled();
      const auto context = openBackgroundContext(
          storeFile, {.name = "import_context", .transactionAuthor = "import", .now = now},
          LibraryUse::changing);
      if (!context) return context.error();
      return operation(*context.value(), work->progress);
    };
    const auto outcome = std::make_shared<const Result<Outcome>>(perform());
    mainQueue.run([outcome, complete] { complete(*outcome); });
    work->end();
  });
}

template <class Outcome>
void LibraryImport::completeLater(Error error, Completion<Outcome> completion) {
  its_.mainQueue.run(life_.guard([error = std::move(error), completion = std::move(completion)] {
    completion(Result<Outcome>(error));
  }));
}

}  // namespace quorlo
