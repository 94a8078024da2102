#include "store/history/store_file_watcher.h"

#include "base/log.h"
#include "history_file.h"
#include "virtual_desktop/wait.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

fs::path movedFolderOf(const fs::path& file) {
  return file.parent_path().string() + "-moved";
}

// Counts the transactions in a store, wherever its folder is, each time that the watcher calls.
struct Watch {
  explicit Watch(const fs::path& file) {
    auto started = StoreFileWatcher::watch(file, [this, file] {
      ++calls;
      SqliteDatabase reader(fs::exists(file) ? file : movedFolderOf(file) / file.filename());
      if (!reader.open(SqliteDatabase::Access::readWrite)) return;
      const auto lock = SqliteTransaction::begin(reader, SqliteTransaction::Kind::write);
      const auto count = reader.integer("SELECT count(*) FROM HistoryTransaction");
      if (lock && count) seen = count.value();
    });
    EXPECT_TRUE(started);
    if (started) watcher = std::move(started).value();
  }
  bool sees(std::int64_t count) {
    return waitUntil([&] { return seen == count; });
  }

  std::atomic<int> calls = 0;
  std::atomic<std::int64_t> seen = 0;
  std::unique_ptr<StoreFileWatcher> watcher;
};

TEST(StoreFileWatcher, TellsOfABurstOfCommitsAFewTimesAndMissesNone) {
  HistoryFile file;
  ASSERT_TRUE(file.database.execute("PRAGMA synchronous = NORMAL"));
  Watch watch(file.database.file());
  const auto begin = std::chrono::steady_clock::now();
  for (int time = 1; time <= 1000; ++time) file.add(time, "other", "other_context");
  EXPECT_TRUE(watch.sees(1000));
  const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - begin;
  EXPECT_LE(watch.calls, duration.count() / 0.04 + 1);

  file.add(1001, "other", "other_context");
  EXPECT_TRUE(watch.sees(1001));
}

TEST(StoreFileWatcher, FollowsFilesThatAreDeletedAndMadeAnew) {
  HistoryFile file;
  const auto path = file.database.file();
  Watch watch(path);
  file.database.close();
  for (const auto& each : fs::directory_iterator(file.directory.path())) fs::remove(each);
  ASSERT_TRUE(file.database.open(SqliteDatabase::Access::create));
  ASSERT_TRUE(file.database.useWriteAheadLog());
  ASSERT_TRUE(createSchema(file.database));
  file.add(1, "other", "other_context");
  EXPECT_TRUE(watch.sees(1));
}

TEST(StoreFileWatcher, SaysThatItsFolderWasMovedAndGoesOnInIt) {
  std::atomic<int> warnings = 0;
  const auto log = redirectLog([&warnings](LogLevel level, std::string_view line) {
    if (level == LogLevel::warning && line.find("was moved or deleted") != line.npos) ++warnings;
  });
  HistoryFile file;
  Watch watch(file.database.file());
  file.add(1, "other", "other_context");
  ASSERT_TRUE(watch.sees(1));
  const auto elsewhere = movedFolderOf(file.database.file());
  fs::rename(file.directory.path(), elsewhere);
  EXPECT_TRUE(waitUntil([&] { return warnings == 1; }));
  file.add(2, "other", "other_context");
  EXPECT_TRUE(watch.sees(2));
  fs::rename(elsewhere, file.directory.path());
}

TEST(StoreFileWatcher, FailsWithoutAFolder) {
  const auto started = StoreFileWatcher::watch("/nowhere at all/private.sqlite", [] {});
  ASSERT_FALSE(started);
  EXPECT_NE(started.error().message.find("/nowhere at all/private.sqlite"), std::string::npos);
}

}  // namespace
}  // namespace quorlo
