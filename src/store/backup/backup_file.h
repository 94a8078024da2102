#pragma once

#include "base/result.h"

#include <cstdint>
#include <filesystem>
#include <functional>

namespace quorlo {

class SqliteDatabase;

// By which two copies of a library are known to hold the same: every save adds to the history, in which no
// two transactions have one timestamp.
struct LibraryState {
  std::int64_t lastTransaction = 0;  // 0 where nothing was ever saved
  std::int64_t timestamp = 0;        // in microseconds since 1970

  bool operator==(const LibraryState&) const = default;
};

struct LibraryContents {
  LibraryState state;
  std::int64_t snippets = 0;  // without those in the trash
};

// What an open library holds; an error where it is none, or damaged.
Result<LibraryContents> libraryContents(SqliteDatabase& library);

// Opens a library's file, of this or an older layout, that no program writes to. The file and its folder stay
// as they are.
Status openBackup(SqliteDatabase& backup);
Result<LibraryContents> readBackup(const std::filesystem::path& file);

// SQLite's own check of everything but the order of the indexes.
Status checkDatabase(SqliteDatabase& database);

// Asked now and then whether to go on. Any thread.
using MayGoOn = std::function<bool()>;

// Writes all that the library holds into one file, readable by its user alone, which gets its name when it
// is whole, checked and on the disk, in the place of whatever has that name. Until then, and after an error,
// nothing has changed; a process that is killed leaves the draft behind, which must not be there before. Both
// paths are absolute and in one folder.
Result<LibraryContents> writeBackup(SqliteDatabase& library, const std::filesystem::path& file,
                                    const std::filesystem::path& draft, const MayGoOn& mayGoOn);
// With what SQLite may have put beside it.
void removeDraft(const std::filesystem::path& draft);

}  // namespace quorlo
