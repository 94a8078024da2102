// A write-ahead log that a killed program left, and a file that was put in its library's place meanwhile:
// what was acknowledged is all there, or set aside, and never mixed.

#include "store/sqlite/file/log_settling.h"

#include "test_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kManySnippets =
    "WITH RECURSIVE numbers(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 2000)"
    " INSERT INTO Snippet(uuid, title, plainText) SELECT hex(randomblob(16)), 'Snippet ' || n,"
    " printf('%.*c', n % 90, 'x') FROM numbers";

// File times tick with the kernel's clock.
void waitForTheClockOfFiles() {
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

class LogSettling : public testing::Test {
 protected:
  void SetUp() override {
    test_.make(kManySnippets);
    fs::create_directories(backups_);
  }

  // One transaction, as a save is one.
  static void save(SqliteDatabase& store, const std::string& sql) {
    auto transaction = SqliteTransaction::begin(store, SqliteTransaction::Kind::write);
    ASSERT_TRUE(transaction && store.execute(sql) && transaction.value().commit());
  }

  // What a killed program leaves: its commits are in the log alone.
  void saveAndDie(const std::string& sql =
                      "DELETE FROM Snippet WHERE row % 3 = 0;"
                      "UPDATE Snippet SET plainText = plainText || title") {
    const auto store = test_.open();
    ASSERT_TRUE(store) << store.error().message;
    save(*store.value(), sql);
    save(*store.value(), "INSERT INTO App(bundleID) VALUES('acknowledged')");
    store.value()->closeUntouched();
    waitForTheClockOfFiles();
  }

  fs::path copied(std::string_view name) const {
    auto copy = backups_ / name;
    fs::copy_file(test_.file, copy, fs::copy_options::overwrite_existing);
    return copy;
  }

  // Opens the library and says what it holds.
  std::string found() {
    notes_ = {};
    const auto store = openStore(test_.directory, {.now = {}, .notes = &notes_});
    if (!store) return store.error().message;
    if (const auto sound = rows(*store.value(), "PRAGMA integrity_check", 1); sound != "ok\n") return sound;
    return rows(*store.value(), "SELECT count(*), (SELECT count(*) FROM App) FROM Snippet", 2);
  }

  std::vector<std::string> setAside() const {
    std::vector<std::string> names;
    for (const auto& each : notes_.setAside) names.push_back(each.filename());
    return names;
  }

  TestStore test_;
  fs::path backups_ = test_.temporary / "backups";
  StoreOpeningNotes notes_;
};

TEST_F(LogSettling, WhatAKilledProgramSavedIsThere) {
  saveAndDie();
  EXPECT_EQ(found(), "1334|1\n");
  EXPECT_TRUE(notes_.logWasLeft);
  EXPECT_THAT(notes_.setAside, IsEmpty());
  EXPECT_EQ(found(), "1334|1\n");
  EXPECT_FALSE(notes_.logWasLeft);
}

// By copying over the file and by renaming, an old one, one of the moment before, and the library of a
// stranger.
TEST_F(LogSettling, ABackupInThePlaceOfTheFileIsReadAloneAndTheLogIsSetAside) {
  const auto oldest = copied("oldest");
  test_.make("INSERT INTO App(bundleID) VALUES('later')");
  const auto newest = copied("newest");
  TestStore stranger;
  stranger.make("INSERT INTO App(bundleID) VALUES('a'), ('b'), ('c')");
  for (const bool byRenaming : {false, true}) {
    for (const auto& [backup, expected] :
         {std::pair(oldest, "2000|0\n"), std::pair(newest, "2000|1\n"), std::pair(stranger.file, "0|3\n")}) {
      const auto before = contents(newest);
      write(test_.file, before);
      for (const auto* suffix : {"-wal", "-shm"}) fs::remove(test_.file.string() + suffix);
      saveAndDie();
      const auto log = contents(test_.file.string() + "-wal");
      const auto intended = copied("intended");
      fs::copy_file(backup, intended, fs::copy_options::overwrite_existing);
      if (byRenaming) {
        fs::rename(intended, test_.file);
      } else {
        fs::copy_file(intended, test_.file, fs::copy_options::overwrite_existing);
      }
      EXPECT_EQ(found(), expected) << backup << byRenaming;
      ASSERT_THAT(setAside(), SizeIs(2)) << backup << byRenaming;
      EXPECT_EQ(contents(notes_.setAside[1]), log);
      EXPECT_EQ(found(), expected);
      EXPECT_THAT(notes_.setAside, IsEmpty());
      for (const auto& entry : fs::directory_iterator(test_.directory)) {
        if (entry.path().string().find("set-aside") != std::string::npos) fs::remove(entry.path());
      }
    }
  }
}

// Taken while the log had some of what was saved: its contents fit, and only its name tells.
TEST_F(LogSettling, ABackupTakenBetweenTwoSavesIsReadAloneWhenItIsRenamed) {
  const auto backup = backups_ / "backup";
  {
    const auto store = test_.open();
    save(*store.value(), "INSERT INTO App(bundleID) VALUES('in the backup')");
    ASSERT_TRUE(store.value()->execute("VACUUM INTO '" + backup.string() + "'"));
    save(*store.value(), "DELETE FROM Snippet");
    store.value()->closeUntouched();
  }
  waitForTheClockOfFiles();
  fs::rename(backup, test_.file);
  EXPECT_EQ(found(), "2000|1\n");
  EXPECT_THAT(setAside(), SizeIs(2));
}

// With the times of the files and without, and in another place.
TEST_F(LogSettling, ALibraryCopiedWithItsLogKeepsWhatIsInTheLog) {
  saveAndDie();
  for (const bool withTimes : {false, true}) {
    for (const auto* suffix : {"", "-wal", "-shm"}) {
      const auto from = fs::path(test_.file.string() + suffix);
      const auto to = fs::path((backups_ / kStoreFileName).string() + suffix);
      fs::copy_file(from, to, fs::copy_options::overwrite_existing);
      if (withTimes) fs::last_write_time(to, fs::last_write_time(from));
    }
    TestStore other;
    fs::create_directories(other.directory.parent_path());
    fs::rename(backups_, other.directory);
    fs::create_directories(backups_);
    const auto store = other.open();
    ASSERT_TRUE(store) << store.error().message;
    EXPECT_EQ(rows(*store.value(), "SELECT count(*) FROM Snippet", 1), "1334\n");
  }
}

// Background contexts know the library by the name in the data folder, which may be a link.
TEST_F(LogSettling, SavesThroughALinkBelongToTheLogThatIsThere) {
  const auto link = test_.temporary / "link";
  fs::create_symlink(test_.file, link);
  const auto store = test_.open();
  save(*store.value(), "INSERT INTO App(bundleID) VALUES('one')");
  SqliteDatabase linked(link);
  ASSERT_TRUE(linked.open(SqliteDatabase::Access::readWrite));
  for (int i = 0; i < 3; ++i) save(linked, "INSERT INTO App(bundleID) VALUES('two')");
  linked.closeUntouched();
  store.value()->closeUntouched();
  waitForTheClockOfFiles();
  EXPECT_EQ(found(), "2000|4\n");
  EXPECT_THAT(notes_.setAside, IsEmpty());
}

TEST_F(LogSettling, ALogThatWasHalfMergedIsMergedToItsEnd) {
  saveAndDie();
  const auto log = contents(test_.file.string() + "-wal");
  auto file = contents(test_.file);
  constexpr std::size_t kFrame = 24 + 4096;
  const auto frames = (log.size() - 32) / kFrame;
  for (std::size_t merged = 1; merged < frames; merged += 7) {
    auto half = file;
    for (std::size_t i = 0; i < merged; ++i) {
      const auto* at = reinterpret_cast<const unsigned char*>(log.data()) + 32 + i * kFrame;
      const std::size_t page =
          std::size_t{at[0]} << 24U | std::size_t{at[1]} << 16U | std::size_t{at[2]} << 8U | at[3];
      if (half.size() < page * 4096) half.resize(page * 4096);
      half.replace((page - 1) * 4096, 4096, log, 32 + i * kFrame + 24, 4096);
    }
    write(test_.file.string() + "-wal", log);
    waitForTheClockOfFiles();
    write(test_.file, half);
    ASSERT_EQ(found(), "1334|1\n") << merged;
    ASSERT_THAT(notes_.setAside, IsEmpty());
  }
}

// A library of the version before has no marks.
TEST_F(LogSettling, ALogWithoutMarksIsMergedOnlyIntoWhatItMakesWhole) {
  TestStore old;
  const auto saveInOldLayout = [&](std::string_view sql) {
    SqliteDatabase database(old.file);
    ASSERT_TRUE(database.open(SqliteDatabase::Access::readWrite) && database.useWriteAheadLog());
    const auto done = database.execute(std::string(sql));
    ASSERT_TRUE(done) << done.error().message;
    database.closeUntouched();
  };
  write(old.file, "");
  saveInOldLayout(contents(QUORLO_STORE_TEST_DATA "/old_store.sql"));
  saveInOldLayout(kManySnippets);
  saveInOldLayout("PRAGMA wal_checkpoint(TRUNCATE)");
  const auto backup = contents(old.file);
  saveInOldLayout("DELETE FROM Snippet WHERE row % 3 = 0; PRAGMA wal_checkpoint(TRUNCATE)");
  saveInOldLayout("UPDATE Snippet SET plainText = plainText || plainText || title");
  {
    TestStore fitting;
    for (const auto* suffix : {"", "-wal"})
      write(fitting.file.string() + suffix, contents(old.file.string() + suffix));
    const auto store = fitting.open();
    ASSERT_TRUE(store) << store.error().message;
    EXPECT_EQ(rows(*store.value(), "SELECT count(*) FROM Snippet WHERE plainText LIKE '%Snippet 1999'", 1),
              "1\n");
  }
  const auto log = contents(old.file.string() + "-wal");
  write(old.file, backup);
  const auto store = openStore(old.directory, {.now = {}, .notes = &notes_});
  ASSERT_TRUE(store) << store.error().message;
  EXPECT_EQ(rows(*store.value(), "PRAGMA integrity_check", 1), "ok\n");
  EXPECT_EQ(rows(*store.value(), "SELECT count(*) FROM Snippet WHERE plainText LIKE '%Snippet 1%'", 1),
            "0\n");
  ASSERT_THAT(setAside(), SizeIs(2));
  EXPECT_EQ(contents(notes_.setAside[1]), log);
}

}  // namespace
}  // namespace quorlo
