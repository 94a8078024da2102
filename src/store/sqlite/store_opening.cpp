#include "store/sqlite/store_opening.h"

#include "base/log.h"
#include "store/sqlite/sqlite_error.h"
#include "store/sqlite/store_files.h"
#include "store/sqlite/store_schema.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
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
  if (auto status = setStraySideFilesAside(store, now); !status) return status;

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

Status openAndMigrate(SqliteDatabase& store, std::chrono::milliseconds busyTimeout) {
  // SQLite would take the file for a new database and remove the write-ahead log beside it.
  std::error_code failure;
  if (fs::file_size(store.file(), failure) == 0 && !failure) return store.damage("it is empty.");

  if (auto opened = store.open(Access::readWrite, busyTimeout); !opened) return opened;
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

}  // namespace

Result<std::unique_ptr<SqliteDatabase>> openStore(const fs::path& directory,
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
  if (const auto opened = openAndMigrate(*store, options.busyTimeout); !opened) {
    return storeLoadFailure(*store, opened.error(), options.now);
  }
  return store;
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
