#include "store/history/history_reader.h"

#include "store/history/history_purge.h"
#include "store/history/persistent_history_fetcher.h"
#include "store/sqlite/file/log_mark.h"

#include <utility>

namespace quorlo {

HistoryReader::HistoryReader(const std::filesystem::path& storeFile, Writer own, Date loaded,
                             std::chrono::milliseconds busyTimeout)
    : database_(storeFile), own_(std::move(own)), loaded_(loaded), busyTimeout_(busyTimeout) {}

Result<NewHistory> HistoryReader::read(Date after) {
  if (auto status = open(); !status) return status.error();
  // A commit is written to the file, and noticed, before readers may see it. Once the write lock is ours,
  // every commit that has been noticed is complete. Nothing is written, and nobody waits while much is read.
  if (const auto lock = SqliteTransaction::begin(database_, SqliteTransaction::Kind::write); !lock) {
    return lock.error();
  }
  const auto view = SqliteTransaction::begin(database_, SqliteTransaction::Kind::read);
  if (!view) return view.error();

  NewHistory history;
  {
    auto statement = database_.prepare("SELECT max(timestamp) FROM HistoryTransaction");
    if (const auto row = statement.step(); !row) return row.error();
    history.newest = statement.date(0);
  }
  if (!history.newest || *history.newest < after) after = Date::min();

  const auto fetched =
      PersistentHistoryFetcher{database_, after, own_.author, own_.contextName, own_.session, loaded_}
          .fetch();
  if (!fetched) return fetched.error();
  if (fetched.value().empty()) return history;
  history.lastProcessed = fetched.value().back().timestamp;
  history.changes = walk(fetched.value());
  return history;
}

// A long log would be read at each start, and a copy of the file without it lacks what it holds. Readers and
// writers are not waited for: there is a next time.
void HistoryReader::mergeLog() {
  if (!open() || logIsEmpty(database_.trueFile())) return;
  database_.setBusyTimeout(std::chrono::milliseconds(0));
  static_cast<void>(database_.integer("PRAGMA wal_checkpoint(PASSIVE)"));
  static_cast<void>(database_.integer("PRAGMA wal_checkpoint(TRUNCATE)"));
  database_.setBusyTimeout(busyTimeout_);
}

Status HistoryReader::purge(Date through) {
  if (auto status = open(); !status) return status.error();
  return purgeHistory(database_, through);
}

Status HistoryReader::open() {
  // The library's name may lead to another file by now.
  if (database_.isOpen() && database_.hasMoved()) database_.closeUntouched();
  return database_.isOpen() ? Status() : database_.open(SqliteDatabase::Access::readWrite, busyTimeout_);
}

}  // namespace quorlo
