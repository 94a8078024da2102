#include "store/backup/library_backups.h"

#include "platform/background_queue.h"
#include "platform/main_queue.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_database.h"

#include <utility>

namespace quorlo {

LibraryBackups::LibraryBackups(Dependencies dependencies)
    : its_(std::move(dependencies)), folder_(BackupFolder::of(its_.dataDirectory)) {}

LibraryBackups::~LibraryBackups() {
  *isStopped_ = true;
}

template <class Outcome>
void LibraryBackups::perform(std::function<Outcome(const MayGoOn&)> work, Completion<Outcome> completion) {
  its_.backgroundQueue.run([work = std::move(work), isStopped = isStopped_, &mainQueue = its_.mainQueue,
                            done = life_.guard(std::move(completion))] {
    auto outcome = work([isStopped] { return !*isStopped; });
    mainQueue.run([done, outcome = std::move(outcome)]() mutable { done(outcome); });
  });
}

void LibraryBackups::add(Completion<Result<BackupFolder::Addition>> completion) {
  using Outcome = Result<BackupFolder::Addition>;
  perform<Outcome>(
      [file = its_.dataDirectory / kStoreFileName, folder = folder_,
       now = its_.now()](const MayGoOn& mayGoOn) -> Outcome {
        SqliteDatabase library(file);
        if (auto status = library.open(SqliteDatabase::Access::readWrite); !status) return status.error();
        return folder.add(library, now, mayGoOn);
      },
      std::move(completion));
}

void LibraryBackups::list(Completion<std::vector<Listed>> completion) {
  perform<std::vector<Listed>>(
      [folder = folder_](const MayGoOn&) {
        std::vector<Listed> all;
        for (auto& each : folder.backups()) {
          const auto contents = readBackup(each.file);
          all.push_back({std::move(each), contents ? std::optional(contents.value()) : std::nullopt});
        }
        return all;
      },
      std::move(completion));
}

void LibraryBackups::restore(const std::filesystem::path& backup,
                             Completion<Result<RestoredLibrary>> completion) {
  perform<Result<RestoredLibrary>>(
      [directory = its_.dataDirectory, backup, now = its_.now()](const MayGoOn& mayGoOn) {
        return restoreLibrary(directory, backup, now, mayGoOn);
      },
      std::move(completion));
}

}  // namespace quorlo
