#include "store/sqlite/file/store_opening.h"

#include "base/log.h"
#include "store/sqlite/file/log_mark.h"
#include "store/sqlite/file/log_settling.h"
#include "store/sqlite/file/store_files.h"
#include "store/sqlite/sqlite_error.h"
#include "store/sqlite/store_schema.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using Access = SqliteDatabase::Access;

constexpr std::string_view kLoadFailure = "###persistentContainer: Failed to load persistent stores: ";

// SQLite gives its side files the rights of the database.
Status layOutStore(const fs::path& file) {
  std::error_code ignored;
  fs::remove(file, ignored);
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (descriptor < 0) {
    return Error{"\"" + file.string() + "\": " + std::generic_category().message(errno)};
  }
  ::close(descriptor);
  SqliteDatabase database(file);
  if (auto status = database.open(Access::readWrite); !status) return status;
  return createSchema(database);
}

// Made under another name, so that whatever has the store's name was whole once.
Status beginEmptyStore(const fs::path& store) {
  auto draft = store;
  draft += ".new";
  if (auto status = layOutStore(draft); !status) {
    std::error_code ignored;
    fs::remove(draft, ignored);
    return status;
  }
  return renameForGood(draft, store);
}

Status beginStore(const fs::path& store, Date now) {
  logInfo("No data files have been found at " + store.string() + ". Try loading Quorlo 2 data if available");
  if (const auto aside = setSideFilesAside(store, now); !aside) return aside.error();

  const auto old = store.parent_path() / kOldStoreFileName;
  if (isMissing(old)) {
    logInfo("There is no old data at: " + old.string() + ". Starting with new empty data for QO 3.");
    return beginEmptyStore(store);
  }
  logInfo("Old data exists at " + old.string());
  if (const auto copied = copyStore(old, store); !copied) {
    logError("Unable to copy old data. New empty data will be created and used. Error message: " +
             copied.error().message);
    return beginEmptyStore(store);
  }
  logInfo("The old data has been successfully moved and will be used as starting point for Quorlo 3.");
  return {};
}

// SQLite itself counts a part of a page as a page and reads zeros for the rest. While there is a log, the
// page may be whole in it.
bool endsWithinAPage(const fs::path& store, std::int64_t pageSize) {
  std::error_code failure;
  const auto log = fs::file_size(storeSideFile(store, "-wal"), failure);
  if (!failure && log > 0) return false;
  const auto size = fs::file_size(store, failure);
  return !failure && size % static_cast<std::uintmax_t>(pageSize) != 0;
}

Status openForWriting(SqliteDatabase& store, const StoreOpeningOptions& options) {
  if (logIsEmpty(store.file())) return store.open(Access::readWrite, options.busyTimeout);
  auto aside = openAndSettleLog(store, options.now, options.busyTimeout);
  if (!aside) return aside.error();
  if (options.notes) *options.notes = {true, std::move(aside).value()};
  return {};
}

Status openAndMigrate(SqliteDatabase& store, const StoreOpeningOptions& options) {
  // SQLite would take the file for a new database and remove the write-ahead log beside it.
  std::error_code failure;
  if (fs::file_size(store.file(), failure) == 0 && !failure) return store.damage("it is empty.");

  if (auto opened = openForWriting(store, options); !opened) return opened;
  const auto version = store.integer("PRAGMA user_version");
  if (!version) return version.error();
  if (version.value() < 1) return store.damage("it is a database, but no library of Quorlo.");
  if (version.value() > kSchemaVersion) {
    return Error{"The library \"" + store.file().string() + "\" was made by a newer Quorlo (its layout is " +
                 std::to_string(version.value()) + ", the newest known here " +
                 std::to_string(kSchemaVersion) + "). Install that version of Quorlo or a later one."};
  }
  const auto pageSize = store.integer("PRAGMA page_size");
  if (!pageSize) return pageSize.error();
  if (endsWithinAPage(store.file(), pageSize.value())) return store.damage("its end is missing.");
  if (auto logged = store.useWriteAheadLog(); !logged) return logged;
  return migrateSchema(store);
}

fs::path resolved(const fs::path& file) {
  std::error_code failure;
  auto target = fs::canonical(file, failure);
  return failure ? file : target;
}

// A directory of this process's own, in memory where there is such a place; gone with it.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::error_code failure;
    for (const auto& parent : {fs::path("/dev/shm"), fs::temp_directory_path(failure)}) {
      auto name = (parent / "quorlo-XXXXXX").string();
      if (::mkdtemp(name.data()) == nullptr) continue;
      path_ = name;
      return;
    }
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

// A store that nothing can be written beside has no programs that write to it. One that is whole without its
// log is read in its place, any other is merged, and brought to the present layout, in a copy, which needs
// its names no longer once it is open.
Result<std::unique_ptr<SqliteDatabase>> openWithoutWriting(const fs::path& file,
                                                           const StoreOpeningOptions& options) {
  if (logIsEmpty(file)) {
    auto alone = std::make_unique<SqliteDatabase>(file);
    if (auto status = alone->open(Access::alone); !status) return status.error();
    const auto version = alone->integer("PRAGMA user_version");
    if (version && version.value() == kSchemaVersion) return alone;
  }
  const ScratchDirectory scratch;
  if (auto copied = copyStore(file, scratch.path() / kStoreFileName); !copied) return copied.error();
  auto copy = openStore(scratch.path(), options);
  if (copy) {
    if (auto status = copy.value()->execute("PRAGMA query_only = ON"); !status) return status.error();
  }
  return copy;
}

Result<std::unique_ptr<SqliteDatabase>> beginOrFind(const fs::path& directory,
                                                    const StoreOpeningOptions& options) {
  if (const auto made = makePrivateDirectory(directory); !made) {
    return Error{"Shared file container could not be created. " + made.error().message};
  }
  const auto name = directory / kStoreFileName;
  if (isMissing(name)) {
    const DirectoryLock lock(directory);
    // Another process may have been quicker.
    if (const auto begun = isMissing(name) ? beginStore(name, options.now) : Status(); !begun) {
      return Error{std::string(kLoadFailure) + "The library could not be begun; " + begun.error().message +
                   ". See that you may write to its folder and that the disk has room."};
    }
  }
  auto store = std::make_unique<SqliteDatabase>(resolved(name));
  makeStorePrivate(store->file());
  return store;
}

}  // namespace

Result<std::unique_ptr<SqliteDatabase>> openStore(const fs::path& directory,
                                                  const StoreOpeningOptions& options) {
  auto store = beginOrFind(directory, options);
  if (!store) return store;
  if (const auto opened = openAndMigrate(*store.value(), options); !opened) {
    return storeLoadFailure(*store.value(), opened.error(), options.now);
  }
  return store;
}

Result<std::unique_ptr<SqliteDatabase>> openStoreToRead(const fs::path& directory,
                                                        const StoreOpeningOptions& options) {
  auto store = beginOrFind(directory, options);
  if (!store) return store;
  const auto opened = openAndMigrate(*store.value(), options);
  if (opened) return store;
  if (saysUnwritable(store.value()->failureCode())) {
    store.value()->closeUntouched();
    if (auto readable = openWithoutWriting(store.value()->file(), options)) return readable;
  }
  return storeLoadFailure(*store.value(), opened.error(), options.now);
}

Error storeLoadFailure(SqliteDatabase& store, const Error& cause, Date now) {
  store.closeUntouched();
  auto message = std::string(kLoadFailure) + cause.message;
  if (!saysDamaged(store.failureCode())) return {std::move(message)};
  const auto copy = copyForRescue(store.file(), now);
  if (copy)
    return {message + " Nothing in it was changed. A copy is kept as \"" + copy.value().string() + "\"."};
  return {message + " Nothing in it was changed. No copy could be kept: " + copy.error().message};
}

}  // namespace quorlo
