#include "store/sqlite/file/log_settling.h"

#include "store/sqlite/file/log_mark.h"
#include "store/sqlite/file/store_files.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_error.h"

#include <string_view>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using Access = SqliteDatabase::Access;

// SQLite's own check: `pragma` decides whether indexes are compared with their tables.
Result<bool> passes(SqliteDatabase& database, std::string_view pragma) {
  auto check = database.prepare(pragma);
  const auto row = check.step();
  if (row) return row.value() && check.text(0) == "ok";
  if (saysDamaged(database.failureCode())) return false;
  return row.error();
}

// Leaves the store open, except after an error. A log without marks belongs to what it makes whole.
Result<LogOrigin> openAndCompare(SqliteDatabase& store, std::chrono::milliseconds busyTimeout) {
  if (auto opened = store.open(Access::readWrite, busyTimeout); !opened) {
    return saysDamaged(store.failureCode()) ? Result(LogOrigin::unreadable) : opened.error();
  }
  auto origin = originOfLog(store);
  if (!origin || origin.value() != LogOrigin::unmarked) return origin;
  const auto sound = passes(store, "PRAGMA integrity_check(1)");
  if (!sound) return sound.error();
  return sound.value() ? LogOrigin::thisFile : LogOrigin::unreadable;
}

bool isSoundAlone(const fs::path& file) {
  SqliteDatabase alone(file);
  if (!alone.open(Access::alone)) return false;
  const auto layout = alone.integer("PRAGMA user_version");
  const auto sound = isSound(alone);
  return layout && layout.value() >= 1 && sound && sound.value();
}

}  // namespace

Result<bool> isSound(SqliteDatabase& database) {
  return passes(database, "PRAGMA quick_check(1)");
}

Result<std::vector<fs::path>> openAndSettleLog(SqliteDatabase& store, Date now,
                                               std::chrono::milliseconds busyTimeout) {
  auto origin = openAndCompare(store, busyTimeout);
  if (!origin) return origin.error();
  if (origin.value() == LogOrigin::thisFile) return std::vector<fs::path>();
  store.closeUntouched();

  const DirectoryLock lock(store.file().parent_path());
  // Another process may have been quicker.
  if (origin = openAndCompare(store, busyTimeout); !origin) return origin.error();
  if (origin.value() == LogOrigin::thisFile) return std::vector<fs::path>();
  store.closeUntouched();

  std::vector<fs::path> aside;
  if (isSoundAlone(store.file())) {
    auto renamed = setSideFilesAside(store.file(), now);
    if (!renamed) return renamed.error();
    aside = std::move(renamed).value();
  } else if (origin.value() != LogOrigin::renamedFile) {
    return store.damage("it is damaged.");
  }
  // A file into which its log was being merged is whole only with it.
  if (auto opened = store.open(Access::readWrite, busyTimeout); !opened) return opened.error();
  return aside;
}

}  // namespace quorlo
