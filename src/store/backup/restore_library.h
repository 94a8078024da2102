#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/backup/backup_folder.h"

#include <filesystem>
#include <optional>

namespace quorlo {

struct RestoredLibrary {
  LibraryContents contents;
  // The library as it was: one of the rolling copies, or, where it was damaged, a copy of its files as they
  // were. Neither where there was none.
  std::optional<Backup> kept;
  std::optional<std::filesystem::path> rescued;
};

// Puts a library's file, a backup as a rule, in the place of the library of a data directory, whole or not at
// all, also after a power cut. The file is checked before, and stays as it is. The library is locked
// meanwhile; programs that have it open find another file under its name afterwards. Any thread, with no
// connection of that thread in a transaction.
Result<RestoredLibrary> restoreLibrary(const std::filesystem::path& dataDirectory,
                                       const std::filesystem::path& backup, Date now, const MayGoOn& mayGoOn);

}  // namespace quorlo
