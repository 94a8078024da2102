#include "store/backup/restore_library.h"

#include "store/sqlite/file/store_files.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_error.h"
#include "store/sqlite/store_meta.h"
#include "store/sqlite/store_schema.h"

#include <unistd.h>

#include <memory>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using Access = SqliteDatabase::Access;

constexpr int kCheckpointTries = 10;
// An older library gets its identity when it is brought to the present layout.
constexpr std::int64_t kFirstSchemaWithMeta = 3;

// Of an open library, by which no other program can write to it, and whose file alone holds everything.
class HeldLibrary {
 public:
  static Result<std::unique_ptr<HeldLibrary>> hold(const fs::path& store) {
    auto held = std::unique_ptr<HeldLibrary>(new HeldLibrary(store));
    if (auto status = held->database_.open(Access::readWrite); !status) return status.error();
    for (int i = 0; i < kCheckpointTries; ++i) {
      if (auto merged = held->database_.integer("PRAGMA wal_checkpoint(TRUNCATE)"); !merged)
        return merged.error();
      auto transaction = SqliteTransaction::begin(held->database_, SqliteTransaction::Kind::write);
      if (!transaction) return transaction.error();
      if (!held->hasLog()) {
        held->transaction_.emplace(std::move(transaction).value());
        return held;
      }
    }
    return Error{"The library \"" + store.string() +
                 "\": another program uses it all the time. Close that program, then try again."};
  }

  // The file may have lost its name meanwhile, and what is beside it may belong to another one.
  ~HeldLibrary() {
    transaction_.reset();
    database_.closeUntouched();
  }

 private:
  explicit HeldLibrary(const fs::path& store) : database_(store) {}

  bool hasLog() const {
    std::error_code failure;
    const auto size = fs::file_size(storeSideFile(database_.file(), "-wal"), failure);
    return !failure && size > 0;
  }

  SqliteDatabase database_;
  std::optional<SqliteTransaction> transaction_;
};

fs::path resolved(const fs::path& file) {
  std::error_code failure;
  auto target = fs::canonical(file, failure);
  return failure ? file : target;
}

Status isRestorable(SqliteDatabase& backup) {
  const auto version = backup.integer("PRAGMA user_version");
  if (!version) return version.error();
  if (version.value() <= kSchemaVersion) return {};
  return Error{"\"" + backup.file().string() +
               "\" was made by a newer Quorlo. Install that version of Quorlo or a later one."};
}

Status giveIdentity(const fs::path& copy) {
  SqliteDatabase database(copy);
  if (auto status = database.open(Access::readWrite); !status) return status;
  const auto version = database.integer("PRAGMA user_version");
  if (!version) return version.error();
  return version.value() < kFirstSchemaWithMeta ? Status() : renewStoreIdentity(database);
}

// Checked, and beside the library, so that a rename puts it in its place.
Result<LibraryContents> copyBeside(const fs::path& backup, const fs::path& copy, const MayGoOn& mayGoOn) {
  SqliteDatabase source(backup);
  if (auto status = openBackup(source); !status) return status.error();
  if (auto status = isRestorable(source); !status) return status.error();
  auto draft = copy;
  const auto contents = writeBackup(source, copy, draft += ".new", mayGoOn);
  if (!contents) return contents;
  if (auto status = giveIdentity(copy); !status) {
    removeDraft(copy);
    return status.error();
  }
  return contents;
}

bool isDamaged(const fs::path& store) {
  SqliteDatabase library(store);
  if (!library.open(Access::readOnly)) return saysDamaged(library.failureCode());
  const auto version = library.integer("PRAGMA user_version");
  const bool isLibrary = version && version.value() >= 1;
  const bool isSound = isLibrary && checkDatabase(library);
  const auto code = library.failureCode();
  library.closeUntouched();
  return !isSound && (saysDamaged(code) || (version && !isLibrary));
}

// The library that is to be replaced, kept as a backup and from then on held.
Result<std::unique_ptr<HeldLibrary>> keepAndHold(const fs::path& dataDirectory, Date now,
                                                 const MayGoOn& mayGoOn, std::optional<Backup>& kept) {
  const auto library = openStore(dataDirectory, {.now = now});
  if (!library) return library.error();
  auto held = HeldLibrary::hold(library.value()->file());
  if (!held) return held;
  const auto added = BackupFolder::of(dataDirectory).add(*library.value(), now, mayGoOn);
  if (!added) return added.error();
  kept = added.value().backup;
  return held;
}

// The log of a held library is empty.
Status putSideFilesAway(const fs::path& store, Date now, bool isHeld) {
  if (!isHeld) {
    const auto aside = setSideFilesAside(store, now);
    return aside ? Status() : Status(aside.error());
  }
  std::error_code ignored;
  for (const auto suffix : kStoreSideFileSuffixes) fs::remove(storeSideFile(store, suffix), ignored);
  return {};
}

Status replace(const fs::path& store, const fs::path& copy, Date now, bool isHeld) {
  const DirectoryLock lock(store.parent_path());
  if (auto status = putSideFilesAway(store, now, isHeld); !status) return status;
  return renameForGood(copy, store);
}

Result<RestoredLibrary> restoreFrom(const fs::path& dataDirectory, const fs::path& store,
                                    const fs::path& copy, Date now, const MayGoOn& mayGoOn) {
  RestoredLibrary restored;
  std::unique_ptr<HeldLibrary> held;
  if (!isMissing(store)) {
    auto holding = keepAndHold(dataDirectory, now, mayGoOn, restored.kept);
    if (holding) {
      held = std::move(holding).value();
    } else {
      if (!isDamaged(store)) return holding.error();
      auto rescued = copyForRescue(store, now);
      if (!rescued) return rescued.error();
      restored.rescued = std::move(rescued).value();
    }
  }
  if (auto status = replace(store, copy, now, held != nullptr); !status) return status.error();
  return restored;
}

}  // namespace

Result<RestoredLibrary> restoreLibrary(const fs::path& dataDirectory, const fs::path& backup, Date now,
                                       const MayGoOn& mayGoOn) {
  if (auto status = makePrivateDirectory(dataDirectory); !status) return status.error();
  const auto store = resolved(dataDirectory / kStoreFileName);
  const fs::path copy = store.string() + ".restored-" + std::to_string(::getpid());
  const auto contents = copyBeside(backup, copy, mayGoOn);
  if (!contents) return contents.error();
  auto restored = restoreFrom(dataDirectory, store, copy, now, mayGoOn);
  removeDraft(copy);
  if (!restored) return restored;
  restored.value().contents = contents.value();
  return restored;
}

}  // namespace quorlo
