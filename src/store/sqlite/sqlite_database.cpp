#include "store/sqlite/sqlite_database.h"

#include "store/sqlite/file/log_mark.h"
#include "store/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <algorithm>
#include <cassert>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

// The limit gives the room of an unusually large save back.
constexpr const char* kSettings =
    "PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; PRAGMA journal_size_limit = 16777216";

// A path as a part of an address, which alone can ask for the file as it is.
std::string addressOf(const std::filesystem::path& file) {
  std::string address = "file:";
  for (const char each : std::filesystem::absolute(file).string()) {
    if (each == '%' || each == '?' || each == '#') {
      constexpr std::string_view kDigits = "0123456789ABCDEF";
      address += {'%', kDigits[static_cast<unsigned char>(each) / 16U],
                  kDigits[static_cast<unsigned char>(each) % 16U]};
    } else {
      address += each;
    }
  }
  return address + "?immutable=1";
}

}  // namespace

SqliteDatabase::SqliteDatabase(std::filesystem::path file) : file_(std::move(file)) {}

SqliteDatabase::~SqliteDatabase() {
  close();
}

// What cannot be opened is not written to, not even to merge its log.
Status SqliteDatabase::open(Access access, std::chrono::milliseconds busyTimeout) {
  assert(!isOpen());
  const bool isAlone = access == Access::alone;
  const int flags = (access == Access::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY) |
                    (isAlone ? SQLITE_OPEN_URI : 0) | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  const auto name = isAlone ? addressOf(file_) : file_.string();
  if (const int code = sqlite3_open_v2(name.c_str(), &connection_, flags, nullptr); code != SQLITE_OK) {
    const auto error = failure(code);
    closeUntouched();
    return error;
  }
  // SQLite is content to read where it may not write.
  if (access == Access::readWrite && sqlite3_db_readonly(connection_, "main") == 1) {
    const auto error = failure(SQLITE_READONLY);
    closeUntouched();
    return error;
  }
  setBusyTimeout(busyTimeout);
  if (auto status = execute(kSettings); !status) {
    closeUntouched();
    return status;
  }
  return {};
}

void SqliteDatabase::setBusyTimeout(std::chrono::milliseconds busyTimeout) {
  sqlite3_busy_timeout(connection_, static_cast<int>(busyTimeout.count()));
}

void SqliteDatabase::close() {
  for (const auto& [sql, statements] : idle_) {
    for (auto* const each : statements) sqlite3_finalize(each);
  }
  idle_.clear();
  const int code = sqlite3_close(connection_);
  assert(code == SQLITE_OK);
  static_cast<void>(code);
  connection_ = nullptr;
}

void SqliteDatabase::closeUntouched() {
  if (isOpen()) sqlite3_db_config(connection_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  close();
}

Status SqliteDatabase::useWriteAheadLog() {
  auto statement = prepare("PRAGMA journal_mode = WAL");
  const auto row = statement.step();
  if (!row) return row.error();
  if (row.value() && statement.text(0) == "wal") return {};
  return Error{"The library \"" + file_.string() +
               "\": its disk cannot keep a write-ahead log. Keep the library on a local disk."};
}

Status SqliteDatabase::execute(const std::string& sql) {
  const int code = sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr);
  return code == SQLITE_OK ? Status() : Status(failure(code));
}

SqliteStatement SqliteDatabase::prepare(std::string_view sql) {
  auto found = idle_.find(sql);
  if (found == idle_.end()) found = idle_.emplace(std::string(sql), IdleStatements()).first;
  auto& idle = found->second;
  if (!idle.empty()) {
    auto* const statement = idle.back();
    idle.pop_back();
    return {*this, statement, &idle, {}};
  }
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(connection_, sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  return {*this, statement, &idle, code == SQLITE_OK ? Status() : Status(failure(code))};
}

Result<std::int64_t> SqliteDatabase::integer(std::string_view sql) {
  auto statement = prepare(sql);
  const auto row = statement.step();
  if (!row) return row.error();
  if (!row.value())
    return Error{"The library \"" + file_.string() + "\" has no answer to " + std::string(sql)};
  return statement.integer(0);
}

std::int64_t SqliteDatabase::lastInsertRowNumber() const {
  return sqlite3_last_insert_rowid(connection_);
}

std::int64_t SqliteDatabase::changedRowCount() const {
  return sqlite3_changes64(connection_);
}

std::int64_t SqliteDatabase::totalChangedRowCount() const {
  return sqlite3_total_changes64(connection_);
}

// By SQLite's own descriptor: closing another one of this process would end SQLite's locks.
std::string SqliteDatabase::bytesOfFile(std::int64_t offset, std::size_t count) {
  sqlite3_file* file = nullptr;
  sqlite3_int64 size = 0;
  if (sqlite3_file_control(connection_, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK ||
      file == nullptr || file->pMethods == nullptr || file->pMethods->xFileSize(file, &size) != SQLITE_OK ||
      offset < 0 || offset >= size) {
    return {};
  }
  std::string bytes(std::min(count, static_cast<std::size_t>(size - offset)), '\0');
  if (file->pMethods->xRead(file, bytes.data(), static_cast<int>(bytes.size()), offset) != SQLITE_OK)
    return {};
  return bytes;
}

std::filesystem::path SqliteDatabase::trueFile() const {
  const char* const name = sqlite3_db_filename(connection_, "main");
  return name == nullptr ? file_ : std::filesystem::path(name);
}

bool SqliteDatabase::hasMoved() const {
  int moved = 0;
  return sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

Error SqliteDatabase::failure(int code) {
  failureCode_ = code;
  const bool isTheConnections = connection_ != nullptr && sqlite3_extended_errcode(connection_) == code;
  return sqliteError(file_, code, isTheConnections ? sqlite3_system_errno(connection_) : 0,
                     isTheConnections ? sqlite3_errmsg(connection_) : sqlite3_errstr(code));
}

bool SqliteDatabase::failedAsNotUnique() const {
  return failureCode_ == SQLITE_CONSTRAINT_UNIQUE;
}

Error SqliteDatabase::damage(std::string_view what) {
  failureCode_ = SQLITE_CORRUPT;
  return {"The library \"" + file_.string() + "\": " + std::string(what) +
          " Put a backup in its place, or move it away to begin anew."};
}

void SqliteDatabase::rollBack() {
  // SQLite has rolled back by itself after some failures.
  if (sqlite3_get_autocommit(connection_) == 0)
    sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteDatabase::release(sqlite3_stmt* statement, IdleStatements& home) {
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
  home.push_back(statement);
}

Result<SqliteTransaction> SqliteTransaction::begin(SqliteDatabase& database, Kind kind) {
  if (auto status = database.execute(kind == Kind::write ? "BEGIN IMMEDIATE" : "BEGIN"); !status) {
    return status.error();
  }
  return SqliteTransaction(database, kind == Kind::write && logIsEmpty(database.trueFile()));
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database, bool beginsLog)
    : database_(&database), beginsLog_(beginsLog), changesBefore_(database.totalChangedRowCount()) {}

SqliteTransaction::SqliteTransaction(SqliteTransaction&& other) noexcept
    : database_(std::exchange(other.database_, nullptr)),
      beginsLog_(other.beginsLog_),
      changesBefore_(other.changesBefore_) {}

SqliteTransaction::~SqliteTransaction() {
  if (database_ != nullptr) database_->rollBack();
}

Status SqliteTransaction::commit() {
  if (beginsLog_ && database_->totalChangedRowCount() != changesBefore_) {
    if (auto status = markLog(*database_); !status) return status;
  }
  auto status = database_->execute("COMMIT");
  if (status) database_ = nullptr;
  return status;
}

}  // namespace quorlo
