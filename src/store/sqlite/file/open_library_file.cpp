#include "store/sqlite/file/open_library_file.h"

#include "base/log.h"
#include "store/backup/backup_file.h"
#include "store/context/managed_object_context.h"
#include "store/sqlite/file/log_mark.h"
#include "store/sqlite/file/store_files.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_error.h"
#include "store/sqlite/sqlite_record_store.h"
#include "store/sqlite/store_schema.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <system_error>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using Access = SqliteDatabase::Access;
using std::chrono::seconds;

constexpr seconds kPatience(2);

std::pair<std::int64_t, std::uintmax_t> writtenAt(const fs::path& file) {
  struct stat found {};
  if (::stat(file.c_str(), &found) != 0) return {};
  return {found.st_mtim.tv_sec * 1'000'000'000 + found.st_mtim.tv_nsec,
          static_cast<std::uintmax_t>(found.st_size)};
}

std::optional<std::pair<std::int64_t, std::int64_t>> newestTransaction(SqliteDatabase& database) {
  auto newest =
      database.prepare("SELECT number, timestamp FROM HistoryTransaction ORDER BY number DESC LIMIT 1");
  const auto row = newest.step();
  if (!row || !row.value()) return std::nullopt;
  return std::pair(newest.integer(0), newest.integer(1));
}

Status makeEmptyStore(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return Error{"\"" + file.string() + "\": " + std::generic_category().message(errno)};
  ::close(descriptor);
  SqliteDatabase database(file);
  if (auto status = database.open(Access::readWrite); !status) return status;
  return createSchema(database);
}

bool always() {
  return true;
}

}  // namespace

OpenLibraryFile::OpenLibraryFile(SqliteRecordStore& store, ManagedObjectContext& context, fs::path directory,
                                 std::function<Date()> now)
    : store_(store), context_(context), directory_(std::move(directory)), now_(std::move(now)) {
  remember();
}

void OpenLibraryFile::remember() {
  file_ = store_.database().file();
  written_ = writtenAt(file_);
  newest_ = newestTransaction(store_.database());
}

OpenLibraryFile::State OpenLibraryFile::look() {
  if (rescued_ || store_.database().hasMoved()) return State::moved;
  const auto written = writtenAt(file_);
  if (written == written_) return State::inPlace;
  // A log was merged into it, or something else was written over it.
  if (!holdsWhatWasSeen()) return State::overwritten;
  written_ = written;
  return State::inPlace;
}

// By a connection of its own, which has nothing of the file in memory. Where it cannot be told, it does.
bool OpenLibraryFile::holdsWhatWasSeen() {
  std::error_code failure;
  if (fs::file_size(file_, failure) == 0 && !failure) return false;
  SqliteDatabase fresh(file_);
  if (!fresh.open(Access::readOnly, kPatience)) return !saysDamaged(fresh.failureCode());
  bool holds = true;
  if (!logIsEmpty(file_)) {
    const auto origin = originOfLog(fresh);
    holds = !origin || (origin.value() != LogOrigin::otherFile && origin.value() != LogOrigin::unreadable);
  }
  if (holds && newest_) {
    const auto timestamp =
        fresh.integer("SELECT coalesce(max(timestamp), 0) FROM HistoryTransaction WHERE number = " +
                      std::to_string(newest_->first));
    holds = timestamp ? timestamp.value() == newest_->second
                      : saysUnwritable(fresh.failureCode()) || saysHeld(fresh.failureCode());
  }
  if (const auto newest = holds ? newestTransaction(fresh) : std::nullopt) newest_ = newest;
  fresh.closeUntouched();
  return holds;
}

bool OpenLibraryFile::isJustBeingWritten() const {
  const auto written = std::chrono::nanoseconds(writtenAt(directory_ / kStoreFileName).first);
  const auto age = now_().time_since_epoch() - written;
  return age >= seconds(0) && age < seconds(1);
}

Result<LibraryNotice> OpenLibraryFile::recover(State state) {
  if (!rescued_ && state == State::moved && isMissing(file_)) return writeBack();
  if (rescued_) {
    if (const auto saved = context_.save(); !saved) return saved.error();
    return openNew(*rescued_);
  }
  auto rescued = rescue(state);
  if (!rescued) return rescued.error();
  return openNew(rescued.value());
}

// The file that was open is read by its descriptor; what is beside its name belongs to it.
Result<LibraryNotice> OpenLibraryFile::writeBack() {
  {
    const DirectoryLock lock(file_.parent_path());
    if (!isMissing(file_)) return Error{"\"" + file_.string() + "\" came back."};
    if (const auto aside = setSideFilesAside(file_, now_()); !aside) return aside.error();
    auto draft = file_;
    draft += ".new";
    removeDraft(draft);
    if (const auto written = writeBackup(store_.database(), file_, draft, always); !written) {
      removeDraft(draft);
      return written.error();
    }
  }
  auto opened = openStore(directory_, {.now = now_(), .busyTimeout = kPatience});
  if (!opened) return opened.error();
  store_.exchangeDatabase(std::move(opened).value())->closeUntouched();
  remember();
  const auto saved = context_.save();
  if (!saved) logError("Unresolved error " + saved.error().message);
  logWarning("WARNING: #lDel5bk - The library \"" + file_.string() + "\" was deleted. It was written back.");
  return LibraryNotice{LibraryNotice::Kind::fileWasDeleted, file_.string()};
}

// Saved by the file's descriptor where it can still be read, else anew from memory.
Result<fs::path> OpenLibraryFile::rescue(State state) {
  const auto name = nameBeside(file_, "rescued", now_());
  auto draft = name;
  draft += ".new";
  if (state == State::moved) {
    if (const auto written = writeBackup(store_.database(), name, draft, always); !written) {
      removeDraft(draft);
      return written.error();
    }
  } else if (auto made = makeEmptyStore(name); !made) {
    return made.error();
  }
  auto database = std::make_unique<SqliteDatabase>(name);
  if (auto opened = database->open(Access::readWrite); !opened) return opened.error();
  auto before = store_.exchangeDatabase(std::move(database));
  if (state == State::overwritten) context_.keepEverything();
  if (const auto saved = context_.save(); !saved) {
    store_.exchangeDatabase(std::move(before));
    removeDraft(name);
    return saved.error();
  }
  before->closeUntouched();
  logWarning("WARNING: #lRpl8cd - The library \"" + file_.string() +
             "\" was replaced by another file. What was in memory is kept as \"" + name.string() + "\".");
  return name;
}

Result<LibraryNotice> OpenLibraryFile::openNew(fs::path rescued) {
  const bool isFirstTry = !std::exchange(rescued_, rescued);
  auto opened = openStore(directory_, {.now = now_(), .busyTimeout = kPatience});
  if (!opened) {
    if (isFirstTry) logError("ERROR: #lNew4op - " + opened.error().message);
    return LibraryNotice{LibraryNotice::Kind::cannotBeOpened, opened.error().message};
  }
  auto before = store_.exchangeDatabase(std::move(opened).value());
  if (const auto reloaded = context_.reload(); !reloaded) {
    store_.exchangeDatabase(std::move(before));
    logError("ERROR: #lNew4ld - " + reloaded.error().message);
    return LibraryNotice{LibraryNotice::Kind::cannotBeOpened, reloaded.error().message};
  }
  before->closeUntouched();
  rescued_.reset();
  remember();
  return LibraryNotice{LibraryNotice::Kind::fileWasReplaced, rescued.string()};
}

}  // namespace quorlo
