#pragma once

#include "base/result.h"
#include "store/sqlite/sqlite_statement.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace quorlo {

// One connection to a database file, with foreign keys enforced and every commit synchronised to the
// disk, so that what was committed survives a power cut. One thread at a time. Its statements and
// transactions must be gone before it is closed or destroyed.
//
// Errors name the file and say what to do; failureCode() has what SQLite said.
class SqliteDatabase {
 public:
  enum class Access {
    readOnly,
    readWrite,
    // The file alone as it is: no log, no side files, no locks. Only for a file that no program writes to,
    // and not while another connection of this process has it open, whose locks would go.
    alone,
  };

  // How long a statement waits for other programs before it fails as locked.
  static constexpr std::chrono::milliseconds kBusyTimeout = std::chrono::seconds(30);

  explicit SqliteDatabase(std::filesystem::path file);
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;
  ~SqliteDatabase();

  // The file must be there and is left as it is; damage may show itself only in later statements.
  Status open(Access access, std::chrono::milliseconds busyTimeout = kBusyTimeout);
  // From now on.
  void setBusyTimeout(std::chrono::milliseconds busyTimeout);
  bool isOpen() const { return connection_ != nullptr; }
  // The last connection to a file merges its write-ahead log and removes the side files, unless the file has
  // moved.
  void close();
  // Leaves the write-ahead log unmerged, for a file that is not to be written to any more.
  void closeUntouched();

  const std::filesystem::path& file() const { return file_; }
  // Where its links lead to; the side files are beside it. While it is open.
  std::filesystem::path trueFile() const;

  // A property of the file, kept once set: readers go on while one connection writes.
  Status useWriteAheadLog();

  // Any number of statements that yield no rows.
  Status execute(const std::string& sql);

  // Compiled once and used again for the same text. One that cannot be compiled fails when it is run.
  SqliteStatement prepare(std::string_view sql);

  // The first column of the first row; an error when there is none.
  Result<std::int64_t> integer(std::string_view sql);

  // As they stand in the file itself, without its log; fewer where the file ends before. While it is open.
  std::string bytesOfFile(std::int64_t offset, std::size_t count);
  // Its name is gone, or another file has it now: what is written does not come into the library any more.
  bool hasMoved() const;

  // Of the last INSERT on this connection.
  std::int64_t lastInsertRowNumber() const;
  // How many rows the last INSERT, UPDATE or DELETE touched, and all together.
  std::int64_t changedRowCount() const;
  std::int64_t totalChangedRowCount() const;

  // The extended result code of what failed last; 0 (SQLITE_OK) while nothing has.
  int failureCode() const { return failureCode_; }
  // The last failure was a value that a unique column holds already.
  bool failedAsNotUnique() const;
  // Counts as a failure, too: what SQLite accepts, but what no sound library holds, as "it is empty.".
  Error damage(std::string_view what);

 private:
  friend class OnlineCopy;
  friend class SqliteStatement;
  friend class SqliteTransaction;

  struct SqlHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view sql) const { return std::hash<std::string_view>()(sql); }
  };
  using IdleStatements = std::vector<sqlite3_stmt*>;

  Error failure(int code);
  void rollBack();
  void release(sqlite3_stmt* statement, IdleStatements& home);

  std::filesystem::path file_;
  sqlite3* connection_ = nullptr;
  int failureCode_ = 0;
  // Compiled statements that nobody uses at the moment, by their text.
  std::unordered_map<std::string, IdleStatements, SqlHash, std::equal_to<>> idle_;
};

// Rolled back when it ends without a commit, a failed one included.
class SqliteTransaction {
 public:
  enum class Kind {
    read,   // one unchanging view of the file from the first statement on
    write,  // the only writer from the start; waits for others as long as the busy timeout
  };

  static Result<SqliteTransaction> begin(SqliteDatabase& database, Kind kind);
  SqliteTransaction(SqliteTransaction&& other) noexcept;
  SqliteTransaction& operator=(SqliteTransaction&&) = delete;
  ~SqliteTransaction();

  // Once it has returned without an error, the changes are on the disk. The first one of a log marks it.
  Status commit();

 private:
  SqliteTransaction(SqliteDatabase& database, bool beginsLog);
  SqliteDatabase* database_;
  bool beginsLog_;
  std::int64_t changesBefore_;
};

}  // namespace quorlo
