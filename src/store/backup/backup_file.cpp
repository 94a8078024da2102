#include "store/backup/backup_file.h"

#include "store/backup/online_copy.h"
#include "store/sqlite/file/log_mark.h"
#include "store/sqlite/file/log_settling.h"
#include "store/sqlite/file/store_files.h"
#include "store/sqlite/sqlite_database.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using Access = SqliteDatabase::Access;

// Stays free for the saves that are made meanwhile.
constexpr std::uintmax_t kRoomToLeave = 16U << 20U;

Error cannotBeWritten(const fs::path& file, int reason) {
  return {"The backup \"" + file.string() +
          "\" cannot be written: " + std::generic_category().message(reason) + "."};
}

std::uintmax_t sizeOf(const fs::path& file) {
  std::error_code failure;
  const auto size = fs::file_size(file, failure);
  return failure ? 0 : size;
}

Status checkRoom(const fs::path& library, const fs::path& file) {
  std::error_code failure;
  const auto space = fs::space(file.parent_path(), failure);
  const auto needed = sizeOf(library) + sizeOf(storeSideFile(library, "-wal")) + kRoomToLeave;
  if (failure || space.available >= needed) return {};
  return Error{"The backup \"" + file.string() +
               "\" cannot be written: the disk is full. Make room on it, then try again."};
}

Status makeEmptyFile(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return cannotBeWritten(file, errno);
  ::close(descriptor);
  return {};
}

Status synchronise(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return cannotBeWritten(file, errno);
  const int failure = ::fsync(descriptor) == 0 ? 0 : errno;
  ::close(descriptor);
  return failure == 0 ? Status() : Status(cannotBeWritten(file, failure));
}

// A draft that ends early is thrown away, so it needs neither journal nor synchronising until it is whole.
// With a rollback journal the finished file stands alone: nothing beside it belongs to it.
Result<LibraryContents> fillDraft(SqliteDatabase& library, const fs::path& file, const MayGoOn& mayGoOn) {
  SqliteDatabase draft(file);
  if (auto status = draft.open(Access::readWrite); !status) return status.error();
  if (auto status = draft.execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF"); !status) {
    return status.error();
  }
  if (auto status = OnlineCopy::run(library, draft, mayGoOn); !status) return status.error();
  if (auto status = draft.execute("PRAGMA journal_mode = DELETE"); !status) return status.error();
  if (auto status = checkDatabase(draft); !status) return status.error();
  return libraryContents(draft);
}

}  // namespace

Result<LibraryContents> libraryContents(SqliteDatabase& library) {
  const auto version = library.integer("PRAGMA user_version");
  if (!version) return version.error();
  if (version.value() < 1) return Error{"\"" + library.file().string() + "\" is no library of Quorlo."};
  LibraryContents contents;
  const auto snippets = library.integer("SELECT count(*) FROM Snippet WHERE deletionDate IS NULL");
  if (!snippets) return snippets.error();
  contents.snippets = snippets.value();
  if (version.value() < 2) return contents;  // no history yet
  auto newest =
      library.prepare("SELECT number, timestamp FROM HistoryTransaction ORDER BY number DESC LIMIT 1");
  const auto row = newest.step();
  if (!row) return row.error();
  if (row.value()) contents.state = {newest.integer(0), newest.integer(1)};
  return contents;
}

Status openBackup(SqliteDatabase& backup) {
  return backup.open(logIsEmpty(backup.file()) ? Access::alone : Access::readOnly);
}

Result<LibraryContents> readBackup(const fs::path& file) {
  SqliteDatabase backup(file);
  if (auto status = openBackup(backup); !status) return status.error();
  return libraryContents(backup);
}

Status checkDatabase(SqliteDatabase& database) {
  const auto sound = isSound(database);
  if (!sound) return sound.error();
  return sound.value() ? Status() : Status(database.damage("it is damaged."));
}

void removeDraft(const fs::path& draft) {
  std::error_code ignored;
  for (const auto suffix : {"", "-journal", "-wal", "-shm"}) fs::remove(draft.string() + suffix, ignored);
}

Result<LibraryContents> writeBackup(SqliteDatabase& library, const fs::path& file, const fs::path& draft,
                                    const MayGoOn& mayGoOn) {
  if (auto status = checkRoom(library.file(), file); !status) return status.error();
  if (auto status = makeEmptyFile(draft); !status) return status.error();
  const auto contents = fillDraft(library, draft, mayGoOn);
  auto status = contents ? synchronise(draft) : Status(contents.error());
  if (status) status = renameForGood(draft, file);
  if (status) return contents;
  removeDraft(draft);
  return status.error();
}

}  // namespace quorlo
