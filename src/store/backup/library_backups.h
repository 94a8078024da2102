#pragma once

#include "base/date.h"
#include "base/life_token.h"
#include "base/result.h"
#include "store/backup/backup_folder.h"
#include "store/backup/restore_library.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorlo {

class BackgroundQueue;
class MainQueue;

// The backups of the library that the program has open, made and read off the main thread and with
// connections of their own. Main thread; each completion is called in a later turn of the main queue.
class LibraryBackups {
 public:
  struct Dependencies {
    MainQueue& mainQueue;
    BackgroundQueue& backgroundQueue;  // may be held for as long as a copy takes
    std::filesystem::path dataDirectory;
    std::function<Date()> now;
  };
  template <class Outcome>
  using Completion = std::function<void(const Outcome&)>;

  // The references outlive the backups.
  explicit LibraryBackups(Dependencies dependencies);
  LibraryBackups(const LibraryBackups&) = delete;
  LibraryBackups& operator=(const LibraryBackups&) = delete;
  ~LibraryBackups();  // stops the work under way, and completes nothing any more

  const BackupFolder& folder() const { return folder_; }

  // Copies what is saved.
  void add(Completion<Result<BackupFolder::Addition>> completion);

  struct Listed {
    Backup backup;
    std::optional<LibraryContents> contents;  // absent where it cannot be read
  };
  void list(Completion<std::vector<Listed>> completion);

  // What is unsaved in memory belongs to the library that is replaced.
  void restore(const std::filesystem::path& backup, Completion<Result<RestoredLibrary>> completion);

 private:
  template <class Outcome>
  void perform(std::function<Outcome(const MayGoOn&)> work, Completion<Outcome> completion);

  Dependencies its_;
  BackupFolder folder_;
  std::shared_ptr<std::atomic<bool>> isStopped_ = std::make_shared<std::atomic<bool>>(false);
  LifeToken life_;
};

}  // namespace quorlo
