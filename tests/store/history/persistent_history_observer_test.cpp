#include "store/history/persistent_history_observer.h"

#include "base/log.h"
#include "fakes/fake_user_defaults.h"
#include "history_file.h"
#include "x11/pumped_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace quorlo {
namespace {

using Rows = std::vector<std::int64_t>;

constexpr auto kDateKey = "lastHistoryTransactionTimeStamp-app";

// An observer over a store file, with the record of what it brings up to date.
struct World {
  HistoryFile file;
  PumpedQueue queue;
  FakeUserDefaults defaults;
  Rows refreshed;
  Status refreshResult;
  std::vector<Rows> checked;  // folders, on the observer's queue; read when it is idle
  std::atomic<int> under_way = 0;
  bool isAnyOnMainThread = false;
  bool overlaps = false;
  Result<bool> mergeResult = false;
  Date now = microsecond(0);
  std::atomic<int> failedFetches = 0;
  Subscription log = redirectLog([this](LogLevel, std::string_view line) {
    if (line.starts_with("ERROR: #evvfd - Persistent History Tracking failed with error The library"))
      ++failedFetches;
  });
  std::thread::id mainThread = std::this_thread::get_id();
  PersistentHistoryObserver observer{AppTarget::app,
                                     {.mainQueue = queue,
                                      .defaults = defaults,
                                      .storeFile = file.database.file(),
                                      .author = "main_app",
                                      .contextName = "view_context",
                                      .refresh =
                                          [this](const std::vector<HistoryChange>& changes) {
                                            if (refreshResult) {
                                              for (const auto& each : changes) refreshed.push_back(each.row);
                                            }
                                            return refreshResult;
                                          },
                                      .deduplicate = [this](const Rows& folders) { return check(folders); },
                                      .now = [this] { return now; },
                                      .busyTimeout = std::chrono::milliseconds(0)}};

  Result<bool> check(const Rows& folders) {
    overlaps |= ++under_way > 1;
    isAnyOnMainThread |= std::this_thread::get_id() == mainThread;
    checked.push_back(folders);
    --under_way;
    return mergeResult;
  }

  std::optional<Date> stored() const {
    const auto* value = defaults.value(DefaultsDomain::appGroup, kDateKey);
    return value == nullptr ? std::nullopt : std::optional(std::get<Date>(*value));
  }
  void store(std::string_view key, int time) {
    defaults.setValue(DefaultsDomain::appGroup, key, microsecond(time));
  }
  // Adds a foreign change and waits until it has been processed, and all before it with it.
  void settle(int time) {
    file.add(time, "other", "other_context", "User", time);
    observer.processStoreRemoteChanges();
    EXPECT_TRUE(queue.pumpUntil([&] { return stored() == microsecond(time); }));
  }
};

TEST(HistoryObserver, BringsOnlyWhatOthersHaveSavedUpToDateAndOnce) {
  World world;
  world.file.add(1, "other", "other_context", "Snippet", 10);
  world.file.add(2, "main_app", "view_context", "Snippet", 20);
  world.file.add(3, "other", "other_context", "Snippet", 30);
  world.settle(4);
  EXPECT_EQ(world.refreshed, (Rows{10, 30, 4}));
  world.file.add(5, "main_app", "view_context", "Snippet", 50);
  world.settle(6);
  EXPECT_EQ(world.refreshed, (Rows{10, 30, 4, 6}));
}

TEST(HistoryObserver, KeepsTheDateAfterAFailureAndTriesAgain) {
  World world;
  world.settle(1);
  {
    SqliteDatabase other(world.file.database.file());
    ASSERT_TRUE(other.open(SqliteDatabase::Access::readWrite));
    world.file.add(2, "other", "other_context", "Snippet", 20);
    const auto lock = SqliteTransaction::begin(other, SqliteTransaction::Kind::write);
    ASSERT_TRUE(lock);
    world.observer.processStoreRemoteChanges();
    EXPECT_TRUE(world.queue.pumpUntil([&] { return world.failedFetches > 0; }));
    EXPECT_EQ(world.stored(), microsecond(1));
  }
  EXPECT_TRUE(world.queue.pumpUntil([&] { return world.stored() == microsecond(2); }));

  int turns = 0;
  world.refreshResult = Error{"no"};
  world.mergeResult = Error{"no"};
  world.file.add(3, "other", "other_context", "Category", 30);
  world.observer.processStoreRemoteChanges();
  EXPECT_TRUE(world.queue.pumpUntil([&] { return ++turns == 100; }));
  EXPECT_EQ(world.stored(), microsecond(2));
  world.refreshResult = {};
  EXPECT_TRUE(
      world.queue.pumpUntil([&] { return !world.refreshed.empty() && world.refreshed.back() == 30; }));
  EXPECT_EQ(world.stored(), microsecond(2));
}

TEST(HistoryObserver, ReadsTheWholeHistoryOfAStoreThatTheDateIsNotFrom) {
  World world;
  world.store(kDateKey, 1000);
  world.file.add(1, "other", "other_context", "Snippet", 10);
  world.settle(2);
  EXPECT_EQ(world.refreshed, (Rows{10, 2}));
}

TEST(HistoryObserver, ChecksFoldersOneOperationAtATimeOffTheMainThread) {
  World world;
  world.mergeResult = true;
  for (int time = 1; time <= 20; ++time) {
    world.file.add(time, "other", "other_context", "Category", time);
    world.observer.processStoreRemoteChanges();
    world.observer.processStoreRemoteChanges();
    world.queue.pump();
  }
  world.settle(21);
  Rows all;
  for (const auto& each : world.checked) all.insert(all.end(), each.begin(), each.end());
  std::ranges::sort(all);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  EXPECT_EQ(all.size(), 20U);
  EXPECT_FALSE(world.overlaps);
  EXPECT_FALSE(world.isAnyOnMainThread);
}

TEST(HistoryObserver, PurgesWhatIsOldAndProcessedByEveryTarget) {
  // The oldest of six transactions that is left.
  const auto oldestLeft = [](std::optional<int> keyboardDate, std::chrono::days age) {
    World world;
    for (int time = 1; time <= 6; ++time) world.file.add(time, "other", "other_context");
    if (keyboardDate) world.store("lastHistoryTransactionTimeStamp-snippetsKeboard", *keyboardDate);
    world.now = microsecond(5) + age;
    world.observer.processStoreRemoteChanges();
    std::int64_t oldest = 0;
    world.queue.pumpUntil([&] {
      oldest = world.file.database.integer("SELECT min(timestamp) FROM HistoryTransaction").value();
      return oldest > 1;
    });
    return oldest;
  };
  EXPECT_EQ(oldestLeft(std::nullopt, std::chrono::days(90)), 6);
  EXPECT_EQ(oldestLeft(3, std::chrono::days(90)), 4);
  EXPECT_EQ(oldestLeft(5, std::chrono::days(365)), 6);
}

TEST(HistoryObserver, NoticesByItselfWhatABurstOfCommitsChanged) {
  World world;
  world.file.add(1, "other", "other_context", "Snippet", 1);
  ASSERT_TRUE(world.observer.startObserving());
  ASSERT_TRUE(world.file.database.execute("PRAGMA synchronous = NORMAL; PRAGMA busy_timeout = 5000"));
  for (int row = 2; row <= 1000; ++row) world.file.add(row, "other", "other_context", "Snippet", row);
  EXPECT_TRUE(world.queue.pumpUntil([&] { return world.stored() == microsecond(1000); }));
  EXPECT_EQ(world.refreshed.size(), 1000U);
  EXPECT_TRUE(std::ranges::is_sorted(world.refreshed));
}

}  // namespace
}  // namespace quorlo
