#pragma once

#include "base/result.h"

#include <filesystem>
#include <string_view>

namespace quorlo {

class SqliteDatabase;

// What binds a write-ahead log to the file that it continues. SQLite merges any log that lies beside a file,
// also one that another file left there, and both are ruined.
//
// The first commit of each log writes a new random mark into the table Meta, before the marks of the logs
// before it, and which file it was written beside. So a file whose newest mark is neither that of the log nor
// the one before it is another file. A library without the table has no marks.

inline constexpr std::string_view kLogMarks = "logMarks";
inline constexpr std::string_view kLogFile = "logFile";

// No log, or one that holds nothing.
bool logIsEmpty(const std::filesystem::path& store);

// Within the first write transaction of a log. Does nothing to a database that has no table Meta.
Status markLog(SqliteDatabase& database);

enum class LogOrigin {
  thisFile,     // the log continues the file
  otherFile,    // it continues another one
  renamedFile,  // it fits, but the file was put beside it under the log's name
  unmarked,     // nothing tells
  unreadable,   // file and log make no database together
};

// Of the log beside an open database, in which nothing was written yet. An error other than damage is
// returned: the database is held or cannot be read.
Result<LogOrigin> originOfLog(SqliteDatabase& database);

}  // namespace quorlo
