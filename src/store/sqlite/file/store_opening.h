#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/sqlite/sqlite_database.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace quorlo {

// The library's file and that of the previous major version, in the user's data directory.
inline constexpr std::string_view kStoreFileName = "private.sqlite";
inline constexpr std::string_view kOldStoreFileName = "Quorlos.sqlite";

// What an opening met that its user should know of.
struct StoreOpeningNotes {
  bool logWasLeft = false;  // the last end was unclean, or another program has it open at this moment
  std::vector<std::filesystem::path> setAside;  // a log of another file, under the names that it has now
};

struct StoreOpeningOptions {
  Date now;  // names the copy of a damaged store
  std::chrono::milliseconds busyTimeout = SqliteDatabase::kBusyTimeout;
  StoreOpeningNotes* notes = nullptr;  // filled when given
};

// Opens the library of the directory, which is made when missing; where there is no library yet, one is
// begun with a copy of the previous version's, else empty. An older layout is brought to the current one.
// Waits for other programs as long as the busy timeout, then reports the store as locked. Any thread.
//
// A backup may be put in the place of the file at any time: a log that the file before left there is set
// aside.
//
// There is never an empty library in the place of one that cannot be opened: a damaged one is copied for
// rescue and left where it is, and the error says where the copy is. The error's message is the whole line
// with which the program ends.
Result<std::unique_ptr<SqliteDatabase>> openStore(const std::filesystem::path& directory,
                                                  const StoreOpeningOptions& options);

// The same for a command that only reads. Where the library may not be written, as on a file system that is
// mounted read-only, and where the disk has no room for SQLite's side files, it is read as it is.
Result<std::unique_ptr<SqliteDatabase>> openStoreToRead(const std::filesystem::path& directory,
                                                        const StoreOpeningOptions& options);

// The same error for whoever reads the records after opening: `cause` is what `store` has just failed with.
// Closes the store. Its statements and transactions must be gone.
Error storeLoadFailure(SqliteDatabase& store, const Error& cause, Date now);

}  // namespace quorlo
