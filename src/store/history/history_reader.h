#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/context/record_store.h"
#include "store/history/remote_changes.h"
#include "store/sqlite/sqlite_database.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace quorlo {

// What others have saved since a moment, and how far the history reaches.
struct NewHistory {
  RemoteChanges changes;
  std::optional<Date> lastProcessed;  // of the last foreign transaction; nil when there was none
  std::optional<Date> newest;         // of the newest transaction of all; nil in a store without history
};

// Reads and purges the history through a connection of its own, opened when first needed. One thread at a
// time.
class HistoryReader {
 public:
  // Left out of what is read is what `own` has saved, and what others of its names had saved by `loaded`,
  // when the library was read.
  HistoryReader(const std::filesystem::path& storeFile, Writer own, Date loaded,
                std::chrono::milliseconds busyTimeout);

  // Includes every commit of which a file watcher can have told before the call. A moment that lies after
  // the newest transaction is one of another store: then the whole history is read.
  Result<NewHistory> read(Date after);

  // See purgeHistory.
  Status purge(Date through);

  // Brings what was saved from the file's log into the file itself, if that is possible at once.
  void mergeLog();

 private:
  Status open();

  SqliteDatabase database_;
  const Writer own_;
  const Date loaded_;
  const std::chrono::milliseconds busyTimeout_;
};

}  // namespace quorlo
