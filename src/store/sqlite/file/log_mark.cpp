#include "store/sqlite/file/log_mark.h"

#include "store/sqlite/file/store_files.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_error.h"
#include "store/uuid.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

// The marks have one length for ever, so that a page never keeps remains of earlier ones.
constexpr std::string_view kPrefix = "quorlo-log:";
constexpr std::size_t kMarkLength = 36;
constexpr std::size_t kMarksKept = 8;

constexpr std::size_t kHeaderSize = 100;
constexpr std::size_t kLogHeaderSize = 32;
constexpr std::size_t kFrameHeaderSize = 24;

std::uint32_t bigEndian(std::string_view bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8U | static_cast<std::uint8_t>(bytes[at + i]);
  return value;
}

// Which file a path names: inode and moment of birth, 0 where the file system does not keep it. Devices get
// other numbers when the machine starts anew.
struct FileIdentity {
  std::uint64_t inode = 0;
  std::int64_t birth = 0;
  std::int64_t modified = 0;  // nanoseconds, like the next
  std::int64_t changed = 0;

  bool isSameFileAs(const FileIdentity& other) const {
    return inode == other.inode && (birth == other.birth || birth == 0 || other.birth == 0);
  }
};

std::optional<FileIdentity> identityOf(const fs::path& file) {
  struct statx found {};
  if (::statx(AT_FDCWD, file.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &found) != 0) return std::nullopt;
  const auto nanoseconds = [](const statx_timestamp& time) {
    return time.tv_sec * 1'000'000'000 + static_cast<std::int64_t>(time.tv_nsec);
  };
  return FileIdentity{found.stx_ino, (found.stx_mask & STATX_BTIME) != 0 ? nanoseconds(found.stx_btime) : 0,
                      nanoseconds(found.stx_mtime), nanoseconds(found.stx_ctime)};
}

// What the log says of the file beside which it was begun.
struct LogFile {
  FileIdentity store;
  FileIdentity log;
  std::uint32_t schemaCookie = 0;
};

std::string written(const LogFile& file) {
  std::ostringstream text;
  text << file.store.inode << ' ' << file.store.birth << ' ' << file.store.modified << ' ' << file.log.inode
       << ' ' << file.log.birth << ' ' << file.schemaCookie;
  return text.str();
}

std::optional<LogFile> readLogFile(const std::string& text) {
  LogFile file;
  std::istringstream in(text);
  if (in >> file.store.inode >> file.store.birth >> file.store.modified >> file.log.inode >> file.log.birth >>
      file.schemaCookie) {
    return file;
  }
  return std::nullopt;
}

using Marks = std::vector<std::string>;  // the newest first

Marks readMarks(std::string_view text) {
  Marks marks;
  if (!text.starts_with(kPrefix)) return marks;
  for (auto at = kPrefix.size(); at + kMarkLength <= text.size(); at += kMarkLength) {
    marks.emplace_back(text.substr(at, kMarkLength));
  }
  return marks;
}

// What the database holds under the key, log included; empty for nothing.
Result<std::string> metaText(SqliteDatabase& database, std::string_view key) {
  auto statement = database.prepare("SELECT value FROM Meta WHERE key = ?");
  const auto row = statement.bind(1, key).step();
  if (!row) return row.error();
  return row.value() ? std::string(statement.text(0)) : std::string();
}

// 0 when there is no such table.
Result<std::int64_t> rootOfMeta(SqliteDatabase& database) {
  return database.integer("SELECT coalesce(max(rootpage), 0) FROM sqlite_schema WHERE name = 'Meta'");
}

// Of the file alone, as it is without its log.
struct FileAlone {
  std::string header;
  std::vector<std::string> marks;  // the newest; remains of earlier ones may stand beside it
  bool has(const std::string& mark) const { return std::ranges::find(marks, mark) != marks.end(); }
  std::uint32_t pageSize() const {
    const auto stored = bigEndian(header, 16) >> 16U;
    return stored == 1 ? 65536 : stored;
  }
  bool usesLog() const { return header[18] == 2; }
  std::uint32_t schemaCookie() const { return bigEndian(header, 40); }
  std::uint32_t layout() const { return bigEndian(header, 60); }
};

std::optional<FileAlone> readAlone(SqliteDatabase& database, std::int64_t rootOfMeta) {
  FileAlone alone{database.bytesOfFile(0, kHeaderSize), {}};
  if (alone.header.size() < kHeaderSize || !alone.header.starts_with("SQLite format 3")) return std::nullopt;
  if (rootOfMeta <= 0) return alone;
  const auto page = database.bytesOfFile((rootOfMeta - 1) * alone.pageSize(), alone.pageSize());
  for (auto at = page.find(kPrefix); at != std::string::npos; at = page.find(kPrefix, at + 1)) {
    alone.marks.push_back(page.substr(at + kPrefix.size(), kMarkLength));
  }
  return alone;
}

// Whether any page of the log stands in the file already.
bool anyPageIsMerged(SqliteDatabase& database, std::uint32_t pageSize) {
  std::ifstream log(storeSideFile(database.trueFile(), "-wal"), std::ios::binary);
  std::string header(kLogHeaderSize, '\0');
  if (!log.read(header.data(), static_cast<std::streamsize>(header.size()))) return false;
  std::string frame(kFrameHeaderSize + pageSize, '\0');
  while (log.read(frame.data(), static_cast<std::streamsize>(frame.size()))) {
    const bool isOfThisLog = frame.compare(8, 8, header, 16, 8) == 0;
    if (!isOfThisLog) break;
    const std::int64_t page = bigEndian(frame, 0);
    if (database.bytesOfFile((page - 1) * pageSize, pageSize) == frame.substr(kFrameHeaderSize)) return true;
  }
  return false;
}

// What the marks leave open: a backup of just the moment when the log was begun.
LogOrigin originByFile(SqliteDatabase& database, const FileAlone& alone, const LogFile& begun, bool isBase) {
  const auto store = identityOf(database.trueFile());
  const auto log = identityOf(storeSideFile(database.trueFile(), "-wal"));
  if (!store || !log) return LogOrigin::thisFile;
  if (!store->isSameFileAs(begun.store)) {
    // File and log were copied together, or the file alone was put in place.
    const bool isReplaced = log->isSameFileAs(begun.log) && store->changed >= log->modified;
    return isReplaced ? LogOrigin::renamedFile : LogOrigin::thisFile;
  }
  const bool isOverwritten = isBase && store->modified != begun.store.modified &&
                             store->modified > log->modified && !anyPageIsMerged(database, alone.pageSize());
  return isOverwritten ? LogOrigin::otherFile : LogOrigin::thisFile;
}

Result<LogOrigin> compare(SqliteDatabase& database) {
  const auto root = rootOfMeta(database);
  if (!root) return root.error();
  const auto alone = readAlone(database, root.value());
  if (!alone) return LogOrigin::unmarked;
  if (!alone->usesLog()) return LogOrigin::otherFile;
  constexpr std::uint32_t kFirstLayoutWithMarks = 3;
  if (root.value() == 0) {
    return alone->layout() >= kFirstLayoutWithMarks ? LogOrigin::otherFile : LogOrigin::unmarked;
  }
  const auto text = metaText(database, kLogMarks);
  if (!text) return text.error();
  const auto marks = readMarks(text.value());
  if (marks.empty()) return LogOrigin::unmarked;

  const bool hasBase = marks.size() > 1 && marks[1].front() != ' ';
  const bool isMerged = alone->has(marks[0]);
  const bool isBase = !isMerged && (hasBase ? alone->has(marks[1]) : alone->marks.empty());
  if (!isMerged && !isBase) return LogOrigin::otherFile;

  const auto begunText = metaText(database, kLogFile);
  if (!begunText) return begunText.error();
  const auto begun = readLogFile(begunText.value());
  if (!begun) return LogOrigin::thisFile;
  const auto cookie = database.integer("PRAGMA schema_version");
  if (!cookie) return cookie.error();
  if (alone->schemaCookie() != begun->schemaCookie && alone->schemaCookie() != cookie.value()) {
    return LogOrigin::otherFile;
  }
  return originByFile(database, *alone, *begun, isBase);
}

}  // namespace

bool logIsEmpty(const fs::path& store) {
  std::error_code failure;
  const auto size = fs::file_size(storeSideFile(store, "-wal"), failure);
  return failure ? failure == std::errc::no_such_file_or_directory : size == 0;
}

Status markLog(SqliteDatabase& database) {
  const auto root = rootOfMeta(database);
  if (!root) return root.error();
  if (root.value() == 0) return {};
  const auto before = metaText(database, kLogMarks);
  if (!before) return before.error();
  auto marks = readMarks(before.value());
  marks.insert(marks.begin(), randomUuid());
  marks.resize(kMarksKept, std::string(kMarkLength, ' '));
  std::string text(kPrefix);
  for (const auto& each : marks) text += each;

  LogFile begun;
  if (const auto store = identityOf(database.trueFile())) begun.store = *store;
  if (const auto log = identityOf(storeSideFile(database.trueFile(), "-wal"))) begun.log = *log;
  begun.schemaCookie = bigEndian(database.bytesOfFile(0, kHeaderSize), 40);
  auto write = database.prepare("INSERT OR REPLACE INTO Meta(key, value) VALUES(?, ?)");
  if (auto status = write.bind(1, kLogMarks).bind(2, std::string_view(text)).run(); !status) return status;
  return write.bind(1, kLogFile).bind(2, std::string_view(written(begun))).run();
}

// While the view is open, no other log can be begun.
Result<LogOrigin> originOfLog(SqliteDatabase& database) {
  const auto view = SqliteTransaction::begin(database, SqliteTransaction::Kind::read);
  auto origin = view ? compare(database) : Result<LogOrigin>(view.error());
  if (!origin && saysDamaged(database.failureCode())) return LogOrigin::unreadable;
  return origin;
}

}  // namespace quorlo
