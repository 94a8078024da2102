#include "store/sqlite/store_schema.h"

#include "shared_library.h"
#include "store/sqlite/store_meta.h"
#include "test_store.h"

#include <gtest/gtest.h>

#include <string>

namespace quorlo {
namespace {

// Makes a library of version 2 out of an empty one.
constexpr const char* kAsVersion2 = R"sql(
DROP TABLE Meta;
DROP TABLE SnippetUse;
ALTER TABLE Snippet ADD COLUMN useCount INTEGER NOT NULL DEFAULT 0;
DROP INDEX SnippetUuid;
DROP INDEX CategoryUuid;
ALTER TABLE HistoryTransaction DROP COLUMN session;
PRAGMA user_version = 2;
)sql";

constexpr const char* kDoubtful = R"sql(
INSERT INTO Category(row, uuid, creationDate, title, sourceType) VALUES
  (1, 'F', 20, 'young', 10), (2, 'F', 10, 'old', 10), (3, '', 10, 'nameless', 10);
INSERT INTO Snippet(row, uuid, creationDate, title, category, useCount) VALUES
  (1, 'S', 20, 'young', 1, 0), (2, 'S', 10, 'old', 2, 7), (3, '', 10, 'twin', NULL, 2), (4, '', 10, 'twin', NULL, 0);
)sql";

std::string all(SqliteDatabase& database) {
  return rows(
             database,
             "SELECT row, uuid, title, category, useCount FROM Snippet LEFT JOIN SnippetUse ON snippet = row",
             5) +
         rows(database, "SELECT row, uuid, title FROM Category", 3);
}

TEST(Schema, MakesUuidsUniqueInTheSameWayForEveryCopyOfALibrary) {
  std::string copies[2];
  for (auto& each : copies) {
    TestStore test;
    test.make(std::string(kAsVersion2) + kDoubtful);
    const auto store = test.open();
    ASSERT_TRUE(store) << store.error().message;
    auto& database = *store.value();
    each = all(database);
    EXPECT_EQ(rows(database,
                   "SELECT title, category, useCount FROM Snippet LEFT JOIN SnippetUse ON snippet = row", 3),
              "young|2|\nold|2|7\ntwin||2\ntwin||\n");
    EXPECT_EQ(rows(database, "SELECT title FROM Snippet WHERE uuid = 'S'", 1), "old\n");
    EXPECT_EQ(rows(database, "SELECT title FROM Category WHERE uuid = 'F'", 1), "old\n");
    EXPECT_EQ(
        rows(database, "SELECT count(DISTINCT uuid), min(length(uuid)) FROM Snippet WHERE uuid <> 'S'", 2),
        "3|36\n");
    EXPECT_EQ(rows(database, "SELECT length(uuid) FROM Category WHERE title = 'nameless'", 1), "36\n");
    EXPECT_FALSE(database.execute("INSERT INTO Snippet(uuid) VALUES('S')"));
    EXPECT_EQ(rows(database, "PRAGMA foreign_key_check", 1), "");
  }
  EXPECT_EQ(copies[0], copies[1]);
}

TEST(Schema, GivesEveryLibraryAnIdentityThatCanBeRenewed) {
  TestStore first;
  TestStore second;
  const auto identity = metaValue(*first.open().value(), kStoreIdentity).value();
  ASSERT_TRUE(identity);
  EXPECT_EQ(metaValue(*first.open().value(), kStoreIdentity).value(), identity);
  EXPECT_NE(metaValue(*second.open().value(), kStoreIdentity).value(), identity);
  ASSERT_TRUE(renewStoreIdentity(*first.open().value()));
  EXPECT_NE(metaValue(*first.open().value(), kStoreIdentity).value(), identity);
  EXPECT_EQ(metaValue(*first.open().value(), "unknown").value(), std::nullopt);
}

// A library that was made in two processes at once, or brought from another device meanwhile.
TEST(Schema, OneUuidSavedByTwoContextsIsOneRecord) {
  SharedLibrary library;
  const auto other = library.other();
  const auto here = library.here.insert<QLCategory>();
  const auto twin = library.here.insert<QLCategory>();
  const auto there = other->insert<QLCategory>();
  for (const auto& each : {here, twin, there}) each->setUuid("same");
  there->setTitle(u"there");
  here->setTitle(u"here");
  const auto inside = library.snippet(u"inside");
  inside->setCategory(here.get());
  ASSERT_TRUE(other->save());
  ASSERT_TRUE(library.here.save());
  EXPECT_EQ(here->rowNumber(), there->rowNumber());
  EXPECT_NE(twin->uuid(), "same");
  EXPECT_EQ(library.stored(), Description::of(library.here));
}

}  // namespace
}  // namespace quorlo
