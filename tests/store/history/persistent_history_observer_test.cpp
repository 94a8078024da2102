#include "store/history/persistent_history_observer.h"

#include "base/log.h"
#include "fakes/fake_user_defaults.h"
#include "history_file.h"
#include "store/background_context.h"
#include "store/managed_object_context.h"
#include "store/ql_category.h"
#include "store/ql_snippet.h"
#include "store/sqlite/store_opening.h"
#include "view_context.h"
#include "x11/pumped_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

namespace quorlo {
namespace {

constexpr auto kDateKey = "lastHistoryTransactionTimeStamp-app";

// An observer over a store, and another process that writes to it.
struct World {
  World() {
    EXPECT_TRUE(view.load());
    other = openBackgroundContext(
                file.database.file(),
                {.name = "other_context", .transactionAuthor = "other", .now = [this] { return othersNow; }})
                .value();
  }

  HistoryFile file;
  PumpedQueue queue;
  FakeUserDefaults defaults;
  Date now = microsecond(0);
  Date othersNow = std::chrono::system_clock::now();
  ManagedObjectContext view{queue, viewConfiguration(file.database.file())};
  std::unique_ptr<ManagedObjectContext> other;

  std::vector<std::u16string> heard;  // titles of snippets that came or changed in the main context
  Subscription observation = view.observeObjectsDidChange([this](const ChangeSet& changes) {
    for (const auto* records : {&changes.inserted, &changes.updated}) {
      for (const auto& each : *records) {
        if (each->entity() == Entity::snippet) heard.push_back(static_cast<QLSnippet&>(*each).title());
      }
    }
  });

  std::thread::id mainThread = std::this_thread::get_id();
  std::atomic<int> failures = 0;
  std::atomic<int> merges = 0;
  Subscription log = redirectLog([this](LogLevel, std::string_view line) {
    if (line.starts_with("ERROR: #evvfd - Persistent History Tracking failed with error ")) ++failures;
    if (line.starts_with("ERROR: #m7rgH")) ++failures;
    if (line ==
            "deduplicate(tagObjectID:performingContext:): Deduplicating tag with name: All Snippets, count:2" &&
        std::this_thread::get_id() != mainThread) {
      ++merges;
    }
  });
  PersistentHistoryObserver observer{AppTarget::app,
                                     {.mainQueue = queue,
                                      .defaults = defaults,
                                      .viewContext = view,
                                      .storeFile = file.database.file(),
                                      .now = [this] { return now; },
                                      .busyTimeout = std::chrono::milliseconds(0)}};

  static std::shared_ptr<QLSnippet> snippet(ManagedObjectContext& context, std::u16string title) {
    const auto snippet = context.insert<QLSnippet>();
    snippet->setTitle(std::move(title));
    return snippet;
  }
  void otherSaves(std::u16string title) {
    snippet(*other, std::move(title));
    EXPECT_TRUE(other->save());
  }
  std::optional<Date> stored() const {
    const auto* value = defaults.value(DefaultsDomain::appGroup, kDateKey);
    return value == nullptr ? std::nullopt : std::optional(std::get<Date>(*value));
  }
  void store(std::string_view key, Date date) { defaults.setValue(DefaultsDomain::appGroup, key, date); }
  Date newest() {
    auto statement = file.database.prepare("SELECT max(timestamp) FROM HistoryTransaction");
    EXPECT_TRUE(statement.step());
    return statement.date(0).value();
  }
  // Runs until all that others have saved so far has been processed, and it was they who saved last.
  bool settles() {
    observer.processStoreRemoteChanges();
    return queue.pumpUntil([this, last = newest()] { return stored() == last; });
  }
};

TEST(HistoryObserver, BringsOnlyWhatOthersHaveSavedUpToDateAndOnce) {
  World world;
  world.otherSaves(u"a");
  const auto own = World::snippet(world.view, u"own");
  ASSERT_TRUE(world.view.save());
  world.otherSaves(u"b");
  EXPECT_TRUE(world.settles());
  world.queue.pump();
  EXPECT_EQ(world.heard, (std::vector<std::u16string>{u"own", u"a", u"b"}));

  own->setTitle(u"own again");
  ASSERT_TRUE(world.view.save());
  const auto before = world.stored();
  world.observer.processStoreRemoteChanges();
  world.otherSaves(u"c");
  EXPECT_LT(before, world.newest());
  EXPECT_TRUE(world.settles());
  world.queue.pump();
  EXPECT_EQ(world.heard, (std::vector<std::u16string>{u"own", u"a", u"b", u"own again", u"c"}));
}

TEST(HistoryObserver, MissesNothingWhenTheClockIsSetBack) {
  World world;
  world.otherSaves(u"a");
  EXPECT_TRUE(world.settles());
  world.othersNow -= std::chrono::hours(24 * 365);
  for (const auto* title : {u"b", u"c"}) {
    world.otherSaves(title);
    EXPECT_TRUE(world.settles());
  }
  world.queue.pump();
  EXPECT_EQ(world.heard, (std::vector<std::u16string>{u"a", u"b", u"c"}));
}

TEST(HistoryObserver, KeepsTheDateAfterAFailureAndTriesAgain) {
  World world;
  world.otherSaves(u"a");
  EXPECT_TRUE(world.settles());
  const auto date = world.stored();
  world.otherSaves(u"b");
  {
    const auto lock = SqliteTransaction::begin(world.file.database, SqliteTransaction::Kind::write);
    ASSERT_TRUE(lock);
    world.observer.processStoreRemoteChanges();
    EXPECT_TRUE(world.queue.pumpUntil([&] { return world.failures == 1; }));
    EXPECT_EQ(world.stored(), date);
  }
  EXPECT_TRUE(world.queue.pumpUntil([&] { return world.stored() == world.newest(); }));

  const auto laterDate = world.stored();
  world.otherSaves(u"c");
  ASSERT_TRUE(world.file.database.execute("ALTER TABLE Snippet RENAME TO Hidden"));
  world.observer.processStoreRemoteChanges();
  EXPECT_TRUE(world.queue.pumpUntil([&] { return world.failures == 2; }));
  EXPECT_EQ(world.stored(), laterDate);
  ASSERT_TRUE(world.file.database.execute("ALTER TABLE Hidden RENAME TO Snippet"));
  EXPECT_TRUE(world.queue.pumpUntil([&] { return world.stored() == world.newest(); }));
  world.queue.pump();
  EXPECT_EQ(world.heard, (std::vector<std::u16string>{u"a", u"b", u"c"}));
}

TEST(HistoryObserver, ReadsTheWholeHistoryOfAStoreThatTheDateIsNotFrom) {
  World world;
  world.store(kDateKey, Date::max());
  world.otherSaves(u"a");
  world.otherSaves(u"b");
  EXPECT_TRUE(world.settles());
  world.queue.pump();
  EXPECT_EQ(world.heard, (std::vector<std::u16string>{u"a", u"b"}));
}

TEST(HistoryObserver, MergesTheAllSnippetsFoldersOfTwoDevicesWithAllThatIsInThem) {
  World world;
  const auto addFolder = [](ManagedObjectContext& context, int day, std::u16string prefix) {
    const auto folder = context.insert<QLCategory>();
    folder->setType(static_cast<std::int64_t>(CategoryType::AllSnippets));
    folder->setSourceType(static_cast<std::int64_t>(SourceType::General));
    folder->setCreationDate(Date(std::chrono::days(day)));
    folder->setUuid("folder of day " + std::to_string(day));
    World::snippet(context, prefix + u"live")->setCategory(folder.get());
    const auto trashed = World::snippet(context, prefix + u"trashed");
    trashed->setCategory(folder.get());
    trashed->moveToTrash();
    EXPECT_TRUE(context.save());
    return folder;
  };
  const auto young = addFolder(world.view, 2, u"here ");
  world.now = Date(std::chrono::days(3));
  const auto old = addFolder(*world.other, 1, u"there ");
  EXPECT_TRUE(world.settles());
  EXPECT_EQ(world.merges, 1);
  EXPECT_TRUE(world.queue.pumpUntil([&] { return young->isDeleted(); }));

  const auto folders = world.view.fetch<QLCategory>({}).value();
  ASSERT_EQ(folders.size(), 1U);
  EXPECT_EQ(folders[0]->rowNumber(), old->rowNumber());
  EXPECT_EQ(folders[0]->snippets().size(), 4U);
  EXPECT_FALSE(world.view.hasChanges());
  EXPECT_EQ(std::ranges::count_if(folders[0]->snippets(),
                                  [&](const auto* each) { return each->modifiedDate() == world.now; }),
            2);
  EXPECT_EQ(world.file.database.integer("SELECT count(*) FROM Category").value(), 1);
  EXPECT_EQ(world.file.database.integer("SELECT count(*) FROM Snippet WHERE category NOT NULL").value(), 4);
}

TEST(HistoryObserver, PurgesWhatIsOldAndProcessedByEveryTarget) {
  // The oldest of six transactions that is left.
  const auto oldestLeft = [](std::optional<int> keyboardDate, std::chrono::days age) {
    World world;
    for (int time = 1; time <= 6; ++time) world.file.add(time, "other", "other_context");
    if (keyboardDate) {
      world.store("lastHistoryTransactionTimeStamp-snippetsKeboard", microsecond(*keyboardDate));
    }
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
  ASSERT_TRUE(world.observer.startObserving());
  for (int number = 1; number <= 200; ++number) world.otherSaves(u"one of many");
  EXPECT_TRUE(world.queue.pumpUntil([&] { return world.heard.size() >= 200; }));
  EXPECT_TRUE(world.queue.pumpUntil([&] { return world.stored() == world.newest(); }));
  EXPECT_EQ(world.heard.size(), 200U);
}

}  // namespace
}  // namespace quorlo
