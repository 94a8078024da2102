#pragma once

#include "base/date.h"
#include "base/result.h"

#include <chrono>
#include <filesystem>
#include <vector>

namespace quorlo {

class SqliteDatabase;

// SQLite's check of everything but the contents of the indexes: false when the database is damaged. Reads the
// whole file.
Result<bool> isSound(SqliteDatabase& database);

// Opens a store for writing, beside which there is a log, and keeps a log that another file left there from
// being merged into it. A foreign log is set aside, under a lock on the folder, if the file alone is sound;
// the names that it has now are returned. Where the file is damaged both with the log and alone, that is the
// error, and nothing has changed.
Result<std::vector<std::filesystem::path>> openAndSettleLog(SqliteDatabase& store, Date now,
                                                            std::chrono::milliseconds busyTimeout);

}  // namespace quorlo
