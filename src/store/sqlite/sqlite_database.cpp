#include "store/sqlite/sqlite_database.h"

#include "store/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <cassert>
#include <utility>

namespace quorlo {
namespace {

// The limit gives the room of an unusually large save back.
constexpr const char* kSettings =
    "PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; PRAGMA journal_size_limit = 16777216";

}  // namespace

SqliteDatabase::SqliteDatabase(std::filesystem::path file) : file_(std::move(file)) {}

SqliteDatabase::~SqliteDatabase() {
  close();
}

Status SqliteDatabase::open(Access access, std::chrono::milliseconds busyTimeout) {
  assert(!isOpen());
  const int flags = (access == Access::readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) |
                    SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  if (const int code = sqlite3_open_v2(file_.c_str(), &connection_, flags, nullptr); code != SQLITE_OK) {
    const auto error = failure(code);
    close();
    return error;
  }
  // SQLite is content to read where it may not write.
  if (access != Access::readOnly && sqlite3_db_readonly(connection_, "main") == 1) {
    const auto error = failure(SQLITE_READONLY);
    close();
    return error;
  }
  setBusyTimeout(busyTimeout);
  if (auto status = execute(kSettings); !status) {
    close();
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
  return SqliteTransaction(database);
}

SqliteTransaction::SqliteTransaction(SqliteTransaction&& other) noexcept
    : database_(std::exchange(other.database_, nullptr)) {}

SqliteTransaction::~SqliteTransaction() {
  if (database_ != nullptr) database_->rollBack();
}

Status SqliteTransaction::commit() {
  auto status = database_->execute("COMMIT");
  if (status) database_ = nullptr;
  return status;
}

}  // namespace quorlo
