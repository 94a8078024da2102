#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/backup/backup_file.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace quorlo {

class SqliteDatabase;

// One copy of the library, as its name and its size tell.
struct Backup {
  std::filesystem::path file;
  int number = 0;  // one more than that of the copy before
  Date date;       // when it was made, by the clock of that moment; in whole seconds
  std::uintmax_t bytes = 0;
};

// The rolling copies of the library in a folder of their own, numbered in the order in which they were made:
// the clock may have been wrong. Any thread, any number of processes.
class BackupFolder {
 public:
  static constexpr std::size_t kKept = 10;

  explicit BackupFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}
  // Of the library in a data directory.
  static BackupFolder of(const std::filesystem::path& dataDirectory);

  const std::filesystem::path& path() const { return folder_; }

  // The newest first; none where there is no folder. Other files in it do not count.
  std::vector<Backup> backups() const;

  struct Addition {
    Backup backup;
    LibraryContents contents;
    bool isNew = true;  // false for the newest copy, which holds just that already
  };
  // Adds a copy and removes the oldest ones beyond kKept. Waits for another process that adds one. Drafts
  // that were left behind are removed. After an error no copy has gone.
  Result<Addition> add(SqliteDatabase& library, Date now, const MayGoOn& mayGoOn) const;

 private:
  std::filesystem::path folder_;
};

// "backup-0012-20261122T091540Z.sqlite".
std::string backupName(int number, Date date);
std::optional<Backup> readBackupName(std::string_view name);  // without a file and its size

}  // namespace quorlo
