#include "fakes/temporary_directory.h"
#include "store/history/persistent_history_fetcher.h"
#include "store/history/remote_changes.h"
#include "store/sqlite/file/store_opening.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace quorlo {
namespace {

using Kind = HistoryChange::Kind;

Date microsecond(int number) {
  return Date(std::chrono::microseconds(number));
}

TEST(PersistentHistoryFetcher, ReadsInOrderWhatOthersSavedAfterTheDate) {
  const TemporaryDirectory directory;
  const auto store = openStore(directory.path(), {Date()});
  ASSERT_TRUE(store);
  auto& database = *store.value();
  ASSERT_TRUE(database.execute(
      "INSERT INTO HistoryTransaction(number, timestamp, author, contextName, session) VALUES"
      "(1, 1, 'main_app', 'view_context', ''), (2, 2, 'other', 'other_context', 'x'),"
      "(3, 3, 'main_app', 'other_context', ''), (4, 4, 'other', 'view_context', 'here'), (5, 5, '', '', 'here'),"
      "(6, 6, 'main_app', 'view_context', 'run before'), (7, 7, 'main_app', 'view_context', 'other display');"
      "INSERT INTO HistoryChange(transactionNumber, entity, row, uuid, kind, changedProperties) VALUES"
      "(2, 'Category', 7, '', 1, 'title,sort'), (2, 'Comment', 1, '', 0, ''), (2, 'User', 2, '', 2, '')"));
  const PersistentHistoryFetcher fetcher{database,       microsecond(1), "main_app",
                                         "view_context", "here",         microsecond(6)};
  const auto found = fetcher.fetch().value();
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].timestamp, microsecond(2));
  EXPECT_EQ(found[0].changes,
            (std::vector<HistoryChange>{{Entity::category, 7, Kind::updated, {"title", "sort"}},
                                        {Entity::user, 2, Kind::deleted}}));
  EXPECT_EQ(found[1].timestamp, microsecond(5));
  EXPECT_TRUE(found[1].changes.empty());
  EXPECT_EQ(found[2].timestamp, microsecond(7));
}

TEST(RemoteChanges, ComeToOneForEachRecordAndNameTheFoldersToCheck) {
  const std::vector<HistoryTransaction> history{
      {{}, "", "", {{Entity::snippet, 1, Kind::updated, {"title"}}, {Entity::category, 2, Kind::inserted}}},
      {{}, "", "", {{Entity::category, 3, Kind::updated, {"sort"}}, {Entity::category, 2, Kind::deleted}}},
      {{},
       "",
       "",
       {{Entity::category, 4, Kind::inserted}, {Entity::snippet, 1, Kind::updated, {"text", "title"}}}},
      {{},
       "",
       "",
       {{Entity::category, 4, Kind::updated, {"sort"}}, {Entity::category, 5, Kind::updated, {"title"}}}}};
  const auto changes = walk(history);
  EXPECT_EQ(changes.records,
            (std::vector<HistoryChange>{{Entity::category, 2, Kind::deleted},
                                        {Entity::category, 3, Kind::updated, {"sort"}},
                                        {Entity::category, 4, Kind::inserted},
                                        {Entity::category, 5, Kind::updated, {"title"}},
                                        {Entity::snippet, 1, Kind::updated, {"title", "text"}}}));
  EXPECT_EQ(changes.foldersToCheck, (std::vector<std::int64_t>{4, 5}));
}

}  // namespace
}  // namespace quorlo
