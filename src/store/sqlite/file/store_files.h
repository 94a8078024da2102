#pragma once

#include "base/date.h"
#include "base/result.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace quorlo {

// A store as files: the database and, while it is in use or was not closed properly, its side files. What
// is in them is not looked at. Errors name the file and give the system's reason. No connection of this
// process may be open to a store that is copied.

inline constexpr std::string_view kStoreSideFileSuffixes[] = {"-shm", "-wal"};

std::filesystem::path storeSideFile(const std::filesystem::path& store, std::string_view suffix);

// Makes the directory and those above it that are missing, for the user alone.
Status makePrivateDirectory(const std::filesystem::path& directory);

// Takes everybody else's rights to the store's files and their directory away. One that cannot be changed
// is left as it is.
void makeStorePrivate(const std::filesystem::path& store);

// False also when it cannot be told, so that nothing is ever put in the place of an existing store.
bool isMissing(const std::filesystem::path& file);

// Copies a store with its side files to a place where there is none. The copy is there whole or not at all,
// also after a power cut.
Status copyStore(const std::filesystem::path& from, const std::filesystem::path& to);

// A name made of the store's own, `what` and the moment, which no store and no side file has.
std::filesystem::path nameBeside(const std::filesystem::path& store, std::string_view what, Date now);

// Copies a store that cannot be read to a name made of its own and the moment, and returns the copy's path.
// A store copied before and unchanged since is not copied again.
Result<std::filesystem::path> copyForRescue(const std::filesystem::path& store, Date now);

// Side files of no store, or of another one than the file that has the name now: SQLite would merge them into
// that file. Renames them to a name made of "set-aside" and the moment, and logs it; an empty log is removed.
// Returns the names that they have now.
Result<std::vector<std::filesystem::path>> setSideFilesAside(const std::filesystem::path& store, Date now);

// Gives a file that has been written completely its name, for good.
Status renameForGood(const std::filesystem::path& from, const std::filesystem::path& to);

// Held while a store is being made, so that two processes do not make it at once. Waits for the other.
class DirectoryLock {
 public:
  explicit DirectoryLock(const std::filesystem::path& directory);
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;
  ~DirectoryLock();

 private:
  int descriptor_;
};

}  // namespace quorlo
