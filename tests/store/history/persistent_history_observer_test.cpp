#include "base/log.h"
#include "fakes/temporary_directory.h"
#include "observed_library.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace quorlo {
namespace {

constexpr auto kDateKey = "lastHistoryTransactionTimeStamp-app";

// An observed library, and another process that writes to it.
struct World {
  TemporaryDirectory directory;
  std::thread::id mainThread = std::this_thread::get_id();
  std::atomic<int> failures = 0;
  std::atomic<int> merges = 0;
  Subscription log = redirectLog([this](LogLevel, std::string_view line) {
    if (line.starts_with("ERROR: #evvfd - Persistent History Tracking failed with error ")) ++failures;
    if (line.starts_with("ERROR: #m7rgH")) ++failures;
    if (line.starts_with("deduplicate(tagObjectID:performingContext:): Deduplicating tag with name: ") &&
        line.ends_with(", count:2") && std::this_thread::get_id() != mainThread) {
      ++merges;
    }
  });
  ObservedLibrary library{directory.path(), std::chrono::milliseconds(0)};
  PumpedQueue& queue = library.queue;
  Date othersNow = systemNow();
  std::unique_ptr<ManagedObjectContext> other = openElsewhere(directory.path(), [this] { return othersNow; });
  SqliteDatabase file{directory / kStoreFileName};
  Status opened = file.open(SqliteDatabase::Access::readWrite);

  std::u16string heard;  // the titles of snippets that came or changed in the main context
  Subscription observation = library.view.observeObjectsDidChange([this](const ChangeSet& changes) {
    for (const auto* records : {&changes.inserted, &changes.updated}) {
      for (const auto& each : *records) {
        if (each->entity() == Entity::snippet) heard += static_cast<QLSnippet&>(*each).title();
      }
    }
  });

  static std::shared_ptr<QLSnippet> add(ManagedObjectContext& context, std::u16string title) {
    const auto snippet = context.insert<QLSnippet>();
    snippet->setTitle(std::move(title));
    return snippet;
  }
  void otherSaves(std::u16string title) {
    add(*other, std::move(title));
    EXPECT_TRUE(other->save());
  }
  std::optional<Date> stored() const {
    const auto* value = library.defaults.value(DefaultsDomain::appGroup, kDateKey);
    return value == nullptr ? std::nullopt : std::optional(std::get<Date>(*value));
  }
  Date time(const char* ofWhich) {
    auto statement = file.prepare(std::string("SELECT ") + ofWhich + "(timestamp) FROM HistoryTransaction");
    EXPECT_TRUE(statement.step());
    return statement.date(0).value();
  }
  // Runs until the newest transaction, which is another's, has been processed and told.
  bool settles() {
    return queue.pumpUntil([this, last = time("max")] { return stored() == last; }) && (queue.pump(), true);
  }
  bool processes() {
    library.observer.processStoreRemoteChanges();
    return settles();
  }
};

TEST(PersistentHistoryObserver, BringsInWhatOthersHaveSavedOnceAndNothingOfItsOwn) {
  World world;
  world.otherSaves(u"a");
  const auto own = World::add(world.library.view, u"+");
  ASSERT_TRUE(world.library.view.save());
  world.otherSaves(u"b");
  EXPECT_TRUE(world.processes());
  EXPECT_EQ(world.heard, u"+ab");

  own->setTitle(u"-");
  ASSERT_TRUE(world.library.view.save());
  world.library.observer.processStoreRemoteChanges();
  world.otherSaves(u"c");
  EXPECT_TRUE(world.processes());
  EXPECT_EQ(world.heard, u"+ab-c");
}

TEST(PersistentHistoryObserver, MissesNothingWhenAClockIsSetBackOrTheDateIsAnotherStores) {
  World world;
  world.library.defaults.setValue(DefaultsDomain::appGroup, kDateKey, Date::max());
  for (const auto* title : {u"a", u"b", u"c"}) {
    world.otherSaves(title);
    EXPECT_TRUE(world.processes());
    world.othersNow -= std::chrono::hours(24 * 365);
  }
  EXPECT_EQ(world.heard, u"abc");
}

TEST(PersistentHistoryObserver, KeepsTheDateAfterAFailureAndTriesAgainByItself) {
  World world;
  world.otherSaves(u"a");
  EXPECT_TRUE(world.processes());
  const auto fails = [&world](int times) {
    const auto date = world.stored();
    world.library.observer.processStoreRemoteChanges();
    EXPECT_TRUE(world.queue.pumpUntil([&] { return world.failures == times; }));
    EXPECT_EQ(world.stored(), date);
  };
  world.otherSaves(u"b");
  {
    const auto lock = SqliteTransaction::begin(world.file, SqliteTransaction::Kind::write);
    fails(1);
  }
  EXPECT_TRUE(world.settles());

  world.otherSaves(u"c");
  ASSERT_TRUE(world.file.execute("ALTER TABLE Snippet RENAME TO Hidden"));
  fails(2);
  ASSERT_TRUE(world.file.execute("ALTER TABLE Hidden RENAME TO Snippet"));
  EXPECT_TRUE(world.settles());
  EXPECT_EQ(world.heard, u"abc");
}

TEST(PersistentHistoryObserver, MergesTheAllSnippetsFoldersOfTwoDevicesWithAllThatIsInThem) {
  World world;
  auto& view = world.library.view;
  const auto addFolder = [](ManagedObjectContext& context, int day) {
    const auto folder = context.insert<QLCategory>();
    folder->setType(static_cast<std::int64_t>(CategoryType::AllSnippets));
    folder->setCreationDate(Date(std::chrono::days(day)));
    folder->setUuid(std::to_string(day));
    World::add(context, u"live")->setCategory(folder.get());
    const auto trashed = World::add(context, u"trashed");
    trashed->setCategory(folder.get());
    trashed->moveToTrash();
    EXPECT_TRUE(context.save());
    return folder;
  };
  const auto young = addFolder(view, 2);
  World::add(view, u"unsaved")->setCategory(young.get());
  const auto old = addFolder(*world.other, 1);
  world.library.now = Date(std::chrono::days(3));
  world.library.observer.processStoreRemoteChanges();
  EXPECT_TRUE(world.queue.pumpUntil([&] { return young->isDeleted(); }));
  EXPECT_EQ(world.merges, 1);

  const auto folders = view.fetch<QLCategory>({}).value();
  ASSERT_EQ(folders.size(), 1U);
  EXPECT_EQ(folders[0]->rowNumber(), old->rowNumber());
  EXPECT_EQ(folders[0]->snippets().size(), 5U);
  EXPECT_EQ(
      std::ranges::count(folders[0]->snippets(), std::optional(world.library.now), &QLSnippet::modifiedDate),
      3);
  EXPECT_FALSE(view.hasChanges());
  EXPECT_EQ(world.file.integer("SELECT count(*) FROM Snippet WHERE category NOT NULL").value(), 5);
}

TEST(PersistentHistoryObserver, PurgesWhatIsOldAndProcessedByEveryTargetButNeverTheNewest) {
  // Of four days in which something was saved, the first that is left on a later one.
  const auto firstDayLeft = [](int today, std::optional<int> keyboardDay) {
    World world;
    for (int day = 1; day <= 4; ++day) {
      world.othersNow = Date(std::chrono::days(day));
      world.otherSaves(u"a");
    }
    if (keyboardDay) {
      world.library.defaults.setValue(DefaultsDomain::appGroup,
                                      "lastHistoryTransactionTimeStamp-snippetsKeboard",
                                      Date(std::chrono::days(*keyboardDay)));
    }
    world.library.now = Date(std::chrono::days(today));
    EXPECT_TRUE(world.processes());
    EXPECT_TRUE(world.queue.pumpUntil([&] { return world.time("min") > Date(std::chrono::days(1)); }));
    return world.time("min").time_since_epoch() / std::chrono::days(1);
  };
  EXPECT_EQ(firstDayLeft(92, std::nullopt), 3);
  EXPECT_EQ(firstDayLeft(92, 1), 2);
  EXPECT_EQ(firstDayLeft(365, 365), 4);
}

}  // namespace
}  // namespace quorlo
