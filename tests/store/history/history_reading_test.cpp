#include "history_file.h"
#include "store/history/history_purge.h"
#include "store/history/persistent_history_fetcher.h"
#include "store/history/remote_changes.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

using Kind = HistoryChange::Kind;

std::vector<HistoryTransaction> othersAfter(HistoryFile& file, Date date) {
  auto fetched = PersistentHistoryFetcher{file.database, date, "main_app", "view_context"}.fetch();
  EXPECT_TRUE(fetched);
  return fetched ? std::move(fetched).value() : std::vector<HistoryTransaction>();
}

std::vector<int> timesOf(const std::vector<HistoryTransaction>& transactions) {
  std::vector<int> times;
  for (const auto& each : transactions) {
    const auto time =
        std::chrono::duration_cast<std::chrono::microseconds>(each.timestamp.time_since_epoch());
    times.push_back(static_cast<int>(time.count()));
  }
  return times;
}

TEST(HistoryFetch, LeavesOutTheOwnAuthorAndTheOwnContextName) {
  HistoryFile file;
  file.add(1, "main_app", "view_context");
  file.add(2, "other", "other_context");
  file.add(3, "main_app", "other_context");
  file.add(4, "other", "view_context");
  file.add(5, "", "");
  EXPECT_EQ(timesOf(othersAfter(file, Date::min())), (std::vector{2, 5}));
  EXPECT_EQ(timesOf(othersAfter(file, microsecond(2))), (std::vector{5}));
  EXPECT_EQ(timesOf(othersAfter(file, microsecond(5))), (std::vector<int>{}));
}

TEST(HistoryFetch, ReadsChangesInOrderAndPassesOverUnknownEntities) {
  HistoryFile file;
  file.add(1, "other", "other_context", "Category", 7, 1, "title,shortcutKeyCode");
  file.add(2, "other", "other_context", "Comment", 1, 0);
  file.add(3, "other", "other_context", "User", 2, 2);
  const auto found = othersAfter(file, Date::min());
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].changes,
            (std::vector<HistoryChange>{{Entity::category, 7, Kind::updated, {"title", "shortcutKeyCode"}}}));
  EXPECT_TRUE(found[1].changes.empty());
  EXPECT_EQ(found[2].changes, (std::vector<HistoryChange>{{Entity::user, 2, Kind::deleted}}));
}

TEST(HistoryFetch, FailsWhenTheHistoryIsNoHistory) {
  HistoryFile file;
  ASSERT_TRUE(file.database.execute("DROP TABLE HistoryChange"));
  EXPECT_FALSE((PersistentHistoryFetcher{file.database, Date::min(), "a", "b"}.fetch()));
}

TEST(RemoteChanges, ComeToOneChangeForEachRecord) {
  const std::vector<HistoryTransaction> history{
      {{}, "", "", {{Entity::snippet, 1, Kind::updated, {"title"}}, {Entity::snippet, 2, Kind::inserted}}},
      {{}, "", "", {{Entity::category, 1, Kind::updated, {"sort"}}}},
      {{},
       "",
       "",
       {{Entity::snippet, 2, Kind::updated, {"text"}}, {Entity::snippet, 3, Kind::updated, {"text"}}}},
      {{},
       "",
       "",
       {{Entity::snippet, 3, Kind::deleted}, {Entity::snippet, 1, Kind::updated, {"text", "title"}}}}};
  EXPECT_EQ(walk(history).records,
            (std::vector<HistoryChange>{{Entity::snippet, 1, Kind::updated, {"title", "text"}},
                                        {Entity::snippet, 2, Kind::inserted},
                                        {Entity::category, 1, Kind::updated, {"sort"}},
                                        {Entity::snippet, 3, Kind::deleted}}));
}

TEST(RemoteChanges, NameTheFoldersThatMayHaveBecomeDuplicates) {
  const std::vector<HistoryTransaction> history{
      {{}, "", "", {{Entity::category, 1, Kind::inserted}, {Entity::category, 2, Kind::inserted}}},
      {{}, "", "", {{Entity::category, 2, Kind::deleted}, {Entity::category, 3, Kind::updated, {"sort"}}}},
      {{},
       "",
       "",
       {{Entity::category, 4, Kind::updated, {"sort", "title"}},
        {Entity::snippet, 5, Kind::updated, {"title"}}}}};
  EXPECT_EQ(walk(history).foldersToCheck, (std::vector<std::int64_t>{1, 4}));
}

TEST(HistoryPurge, KeepsTheNewestTransactionSinceTheNextTimeComesAfterIt) {
  HistoryFile file;
  for (int time = 1; time <= 4; ++time) file.add(time, "other", "other_context");
  ASSERT_TRUE(purgeHistory(file.database, microsecond(2)));
  EXPECT_EQ(timesOf(othersAfter(file, Date::min())), (std::vector{3, 4}));
  ASSERT_TRUE(purgeHistory(file.database, Date::max()));
  EXPECT_EQ(timesOf(othersAfter(file, Date::min())), (std::vector{4}));
  EXPECT_EQ(file.database.integer("SELECT count(*) FROM HistoryChange").value(), 1);
}

}  // namespace
}  // namespace quorlo
