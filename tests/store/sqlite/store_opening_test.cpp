#include "store/sqlite/file/store_opening.h"

#include "child_process.h"
#include "test_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <random>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

unsigned rights(const fs::path& file) {
  return static_cast<unsigned>(fs::status(file).permissions());
}

// Left as a killed program leaves it: a part is in the write-ahead log only.
void makeOldStore(const fs::path& directory) {
  write(directory / kOldStoreFileName, "");
  SqliteDatabase old(directory / kOldStoreFileName);
  ASSERT_TRUE(old.open(SqliteDatabase::Access::readWrite));
  const auto made = old.execute(contents(QUORLO_STORE_TEST_DATA "/old_store.sql"));
  ASSERT_TRUE(made) << made.error().message;
  old.closeUntouched();
}

std::vector<std::string> oldFiles(const fs::path& directory) {
  std::vector<std::string> files;
  for (const auto* suffix : {"", "-shm", "-wal"}) {
    files.push_back(contents((directory / kOldStoreFileName).string() + suffix));
  }
  return files;
}

TEST(StoreOpening, BeginsAnEmptyLibraryForTheUserAloneAndFindsItAgain) {
  TestStore test;
  const auto mask = ::umask(0);
  {
    const auto store = test.open();
    ASSERT_TRUE(store) << store.error().message;
    EXPECT_TRUE(store.value()->execute("INSERT INTO Snippet(title) VALUES ('kept')"));
    EXPECT_EQ(rows(*store.value(), "PRAGMA journal_mode", 1), "wal\n");
    EXPECT_EQ(rows(*store.value(), "PRAGMA synchronous", 1), "2\n");
    EXPECT_EQ(rows(*store.value(), "SELECT key FROM Meta WHERE value = 1", 1),
              "HasMigratedTo308\nHasMigratedToVersion23\nHasMigratedToVersion300g\n")
        << "a new library needs none of the repairs";
    EXPECT_EQ(rows(*store.value(), "PRAGMA foreign_keys", 1), "1\n");
    for (const auto* suffix : {"", "-wal", "-shm"}) EXPECT_EQ(rights(test.file.string() + suffix), 0600U);
  }
  ::umask(mask);
  EXPECT_EQ(rights(test.directory), 0700U);
  EXPECT_THAT(test.log,
              ElementsAre("No data files have been found at " + test.file.string() +
                              ". Try loading Quorlo 2 data if available",
                          "There is no old data at: " + (test.directory / "Quorlos.sqlite").string() +
                              ". Starting with new empty data for QO 3."));
  test.log.clear();
  fs::permissions(test.file, fs::perms(0644));
  const auto store = test.open();
  ASSERT_TRUE(store) << store.error().message;
  EXPECT_EQ(rows(*store.value(), "SELECT title FROM Snippet", 1), "kept\n");
  EXPECT_EQ(rights(test.file), 0600U);
  EXPECT_TRUE(test.log.empty());
}

TEST(StoreOpening, CopiesTheOldLibraryOnceWithWhatIsOnlyInItsLogAndMigratesIt) {
  TestStore test;
  makeOldStore(test.directory);
  const auto before = oldFiles(test.directory);
  ASSERT_FALSE(before[2].empty());
  {
    const auto store = test.open();
    ASSERT_TRUE(store) << store.error().message;
    auto& database = *store.value();
    EXPECT_EQ(
        rows(database,
             "SELECT row, title, abbreviation, plainText, useCount, deletionDate, category, titleIsCustom "
             "FROM Snippet LEFT JOIN SnippetUse ON snippet = row",
             8),
        "1|Greeting|mfg|Mit freundlichen Grüßen 👋|8||2|1\n"
        "2|Never typed||No abbreviation||||1\n"
        "3||log|Only in the log||1600000500000000|2|0\n");
    EXPECT_EQ(rows(database, "SELECT row, title, type, sourceType FROM Category", 4),
              "1||-10|0\n2|Grüße|0|0\n");
    EXPECT_EQ(rows(database, "SELECT savedChars, savedMinutes, wordsPerMinute FROM User", 3),
              "1234|6.5|50\n");
    EXPECT_EQ(rows(database, "SELECT hex(text) FROM SnippetText", 1), "A16776657273696F6E01\n");
    EXPECT_EQ(
        rows(database,
             "SELECT snippet, app FROM SnippetAllowedApps UNION ALL SELECT * FROM SnippetBlockedSnippets"
             " UNION ALL SELECT * FROM CategoryAllowedApps UNION ALL SELECT * FROM CategoryBlockedApps",
             2),
        "1|1\n1|2\n2|1\n2|2\n");
    EXPECT_EQ(rows(database, "PRAGMA user_version", 1), "3\n");
    EXPECT_EQ(rows(database, "PRAGMA integrity_check", 1), "ok\n");
    EXPECT_EQ(rows(database, "SELECT count(*) FROM HistoryTransaction", 1), "0\n");
    EXPECT_EQ(rows(database, "SELECT key FROM Meta WHERE value = 1", 1), "HasMigratedTo308\n");
  }
  EXPECT_EQ(oldFiles(test.directory), before);
  EXPECT_THAT(test.log,
              ElementsAre("No data files have been found at " + test.file.string() +
                              ". Try loading Quorlo 2 data if available",
                          "Old data exists at " + (test.directory / "Quorlos.sqlite").string(),
                          "The old data has been successfully moved and will be used as starting point for "
                          "Quorlo 3."));

  // What the user deletes now must not come back from the old file.
  test.make("DELETE FROM Snippet");
  const auto again = test.open();
  EXPECT_EQ(rows(*again.value(), "SELECT count(*) FROM Snippet", 1), "0\n");
}

TEST(StoreOpening, CopiesTheOldLibraryWholeAlthoughItWasKilledAtAnyMoment) {
  std::mt19937 random(20231114);
  for (int kill = 0; kill < 40; ++kill) {
    TestStore test;
    makeOldStore(test.directory);
    ChildProcess child([&test](const Channel& parent) {
      parent.send(1);
      static_cast<void>(test.open());
    });
    ASSERT_TRUE(child.channel().number());
    const auto moment = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 10'000);
    while (std::chrono::steady_clock::now() < moment) {
    }
    child.kill();
    const auto store = test.open();
    ASSERT_TRUE(store) << store.error().message;
    EXPECT_EQ(rows(*store.value(), "SELECT plainText FROM Snippet WHERE row = 3", 1), "Only in the log\n");
    EXPECT_EQ(rows(*store.value(), "PRAGMA user_version", 1), "3\n");
    EXPECT_EQ(rows(*store.value(), "PRAGMA integrity_check", 1), "ok\n");
  }
}

TEST(StoreOpening, BeginsEmptyWhenTheOldLibraryCannotBeCopied) {
  TestStore test;
  fs::create_directories(test.directory / kOldStoreFileName);
  const auto store = test.open();
  ASSERT_TRUE(store) << store.error().message;
  EXPECT_EQ(rows(*store.value(), "SELECT count(*) FROM Snippet", 1), "0\n");
  ASSERT_EQ(test.log.size(), 3U);
  EXPECT_THAT(test.log[2],
              testing::StartsWith(
                  "Unable to copy old data. New empty data will be created and used. Error message: "));
}

// SQLite would recover a log that was left behind into the new file.
TEST(StoreOpening, TakesASideFileWithoutALibraryForNoPartOfTheNewOne) {
  TestStore test;
  {
    const auto store = test.open();
    ASSERT_TRUE(store.value()->execute("INSERT INTO Snippet(title) VALUES ('stray')"));
    store.value()->closeUntouched();
  }
  const auto log = contents(test.file.string() + "-wal");
  fs::remove(test.file);
  const auto store = test.open();
  ASSERT_TRUE(store) << store.error().message;
  EXPECT_EQ(rows(*store.value(), "SELECT count(*) FROM Snippet", 1), "0\n");
  EXPECT_EQ(contents(test.file.string() + ".set-aside-2023-11-14-221320-wal"), log);
}

TEST(StoreOpening, SaysWhenTheDirectoryCannotBeMade) {
  TestStore test;
  write(test.temporary / "file", "");
  test.directory = test.temporary / "file" / "data";
  const auto store = test.open();
  ASSERT_FALSE(store);
  EXPECT_THAT(store.error().message, testing::StartsWith("Shared file container could not be created."));
}

}  // namespace
}  // namespace quorlo
