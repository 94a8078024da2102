#include "store/history/store_file_watcher.h"

#include "base/log.h"
#include "fakes/temporary_directory.h"
#include "store/sqlite/file/store_opening.h"
#include "virtual_desktop/wait.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

// A store in a folder that may be moved, and how many rows are in it whenever the watcher calls.
struct WatchedStore {
  void open() {
    auto opened = openStore(folder, {Date()});
    ASSERT_TRUE(opened);
    store = std::move(opened).value();
    ASSERT_TRUE(store->execute("PRAGMA synchronous = NORMAL"));
  }
  void watch() {
    // As a user has it who keeps the library elsewhere.
    fs::create_symlink(folder / kStoreFileName, directory / "link");
    auto started = StoreFileWatcher::watch(directory / "link", [this] {
      ++calls;
      SqliteDatabase reader((fs::exists(folder) ? folder : moved) / kStoreFileName);
      if (!reader.open(SqliteDatabase::Access::readWrite)) return;
      const auto lock = SqliteTransaction::begin(reader, SqliteTransaction::Kind::write);
      const auto count = reader.integer("SELECT count(*) FROM App");
      if (lock && count) seen = count.value();
    });
    ASSERT_TRUE(started);
    watcher = std::move(started).value();
  }
  bool seesAfterAdding(int rows) {
    for (int i = 0; i < rows; ++i) EXPECT_TRUE(store->execute("INSERT INTO App DEFAULT VALUES"));
    return waitUntil(
        [this, all = store->integer("SELECT count(*) FROM App").value()] { return seen == all; });
  }

  TemporaryDirectory directory;
  const fs::path folder = directory / "data";
  const fs::path moved = directory / "moved";
  std::unique_ptr<SqliteDatabase> store;
  std::atomic<int> calls = 0;
  std::atomic<std::int64_t> seen = 0;
  std::unique_ptr<StoreFileWatcher> watcher;
};

TEST(StoreFileWatcher, TellsOfABurstOfCommitsAFewTimesAndMissesNone) {
  WatchedStore world;
  world.open();
  world.watch();
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_TRUE(world.seesAfterAdding(1000));
  const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - begin;
  EXPECT_LE(world.calls, duration.count() / 0.04 + 1);
}

TEST(StoreFileWatcher, FollowsNewFilesAndAMovedFolder) {
  WatchedStore world;
  EXPECT_FALSE(StoreFileWatcher::watch(world.folder / kStoreFileName, [] {}));
  world.open();
  world.watch();
  world.store.reset();
  for (const auto& each : fs::directory_iterator(world.folder)) fs::remove(each);
  world.open();
  EXPECT_TRUE(world.seesAfterAdding(1));

  std::atomic<int> warnings = 0;
  const auto log = redirectLog([&warnings](LogLevel level, std::string_view line) {
    if (level == LogLevel::warning && line.find("was moved or deleted") != line.npos) ++warnings;
  });
  fs::rename(world.folder, world.moved);
  EXPECT_TRUE(waitUntil([&] { return warnings == 1; }));
  EXPECT_TRUE(world.seesAfterAdding(1));
}

}  // namespace
}  // namespace quorlo
