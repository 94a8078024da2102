// A backup in the place of the library: whole or not at all, and never at the cost of what was there.

#include "store/backup/restore_library.h"
#include "store/sqlite/child_process.h"
#include "store/sqlite/store_meta.h"
#include "whole_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const auto kGoOn = [] { return true; };
constexpr auto kSave =
    "INSERT INTO Snippet(uuid, title, plainText) VALUES(hex(randomblob(16)), 'Later', printf('%.*c', 3000, 'x'));"
    "INSERT INTO HistoryTransaction(timestamp, author, contextName)"
    " SELECT coalesce(max(timestamp), 0) + 1, 'a', 'c' FROM HistoryTransaction";

struct RestorableLibrary {
  TestStore store;
  Date now{std::chrono::seconds(1'700'000'000)};

  explicit RestorableLibrary(unsigned seed = 1) {
    Random random(seed);
    fillAtRandom(store, random);
  }

  fs::path backUp() const {
    const auto library = store.open();
    const auto file = store.temporary / "backup";
    const auto written = writeBackup(*library.value(), file, store.temporary / "draft", kGoOn);
    EXPECT_TRUE(written.ok()) << written.error().message;
    return file;
  }
  Result<RestoredLibrary> restore(const fs::path& backup) const {
    return restoreLibrary(store.directory, backup, now, kGoOn);
  }
  std::string present() const { return everything(*store.open().value()); }
  std::string identity() const {
    return metaValue(*store.open().value(), kStoreIdentity).value().value_or("none");
  }
};

struct RestoreLibraryTest : testing::Test, RestorableLibrary {};

// As a process leaves it that is killed: with everything new in the log alone.
void changeAndDie(const TestStore& store) {
  const auto library = store.open();
  ASSERT_TRUE(library.value()->execute(kSave));
  library.value()->closeUntouched();
  ASSERT_GT(fs::file_size(storeSideFile(store.file, "-wal")), 0U);
}

TEST_F(RestoreLibraryTest, BringsEveryRowBackAndKeepsTheFormerLibraryWhateverItsLogHeld) {
  for (unsigned seed = 0; seed < 10; ++seed) {
    const RestorableLibrary library(seed);
    const auto before = library.present();
    const auto identity = library.identity();
    const auto backup = library.backUp();
    const auto bytes = contents(backup);
    changeAndDie(library.store);
    const auto restored = library.restore(backup);
    ASSERT_TRUE(restored.ok()) << restored.error().message;
    EXPECT_EQ(library.present(), before) << "seed " << seed;
    EXPECT_NE(library.identity(), identity);
    EXPECT_EQ(contents(backup), bytes);
    ASSERT_TRUE(restored.value().kept.has_value());
    EXPECT_THAT(everything(restored.value().kept->file), HasSubstr("Later"));
    for (const auto& each : fs::directory_iterator(library.store.directory)) {
      EXPECT_THAT(each.path().filename(), testing::Not(HasSubstr("restored")));
    }
  }
}

TEST_F(RestoreLibraryTest, AProgramThatHasTheFormerFileOpenDoesTheNewOneNoHarm) {
  const auto backup = backUp();
  {
    const auto open = store.open();
    ASSERT_TRUE(open.value()->execute(kSave));
    const auto restored = restore(backup);
    ASSERT_TRUE(restored.ok()) << restored.error().message;
    const auto opened = store.open();
    ASSERT_TRUE(opened.value()->execute(kSave));
    ASSERT_TRUE(open.value()->execute(kSave)) << "into the file without a name";
    opened.value()->closeUntouched();
  }
  const auto library = store.open();
  EXPECT_EQ(library.value()->integer("SELECT count(*) FROM Snippet WHERE title = 'Later'").value(), 1);
  EXPECT_TRUE(checkDatabase(*library.value()).ok());
}

TEST_F(RestoreLibraryTest, AnotherProgramsTransactionIsNeverCutOff) {
  const auto backup = backUp();
  ChildProcess writer([this](const Channel& parent) {
    const auto library = store.open();
    for (int i = 0;; ++i) {
      if (!library.value()->execute(kSave)) return;
      parent.send(i);
    }
  });
  ASSERT_TRUE(writer.channel().number().has_value());
  const auto restored = restore(backup);
  ASSERT_TRUE(restored.ok()) << restored.error().message;
  writer.kill();
  EXPECT_TRUE(checkDatabase(*store.open().value()).ok());
  EXPECT_EQ(everything(restored.value().kept->file).find("Later") != std::string::npos, true);
}

TEST_F(RestoreLibraryTest, ADamagedLibraryIsReplacedAndItsFilesAreKept) {
  const auto before = present();
  const auto backup = backUp();
  for (const auto& damage : {std::string(), std::string(9000, 'x')}) {
    write(store.file, damage);
    const auto restored = restore(backup);
    ASSERT_TRUE(restored.ok()) << restored.error().message;
    EXPECT_EQ(present(), before);
    ASSERT_TRUE(restored.value().rescued.has_value());
    EXPECT_EQ(contents(*restored.value().rescued), damage);
  }
}

TEST_F(RestoreLibraryTest, WhatIsNoSoundLibraryIsRefusedAndChangesNothing) {
  const auto before = present();
  const auto backup = backUp();
  const auto sound = contents(backup);
  auto newer = sound;
  newer[63] = 99;  // user_version, in the header
  auto damaged = sound;
  for (std::size_t i = 8192; i < 12288; ++i) damaged[i] = 'x';
  for (const auto& bytes : {std::string(), std::string("text"), newer, damaged, sound.substr(0, 20'000)}) {
    write(backup, bytes);
    EXPECT_FALSE(restore(backup).ok());
    EXPECT_EQ(present(), before);
  }
  EXPECT_FALSE(restore(store.temporary / "nowhere").ok());
  EXPECT_TRUE(BackupFolder::of(store.directory).backups().empty());
}

TEST_F(RestoreLibraryTest, WhereThereIsNoLibraryTheBackupBecomesIt) {
  const auto before = present();
  const auto backup = backUp();
  changeAndDie(store);
  fs::remove(store.file);
  ASSERT_TRUE(restore(backup).ok());
  EXPECT_EQ(present(), before);
}

TEST_F(RestoreLibraryTest, AProcessThatIsKilledLeavesTheOneLibraryOrTheOther) {
  const auto before = present();
  const auto backup = backUp();
  store.make(kSave);
  const auto after = present();
  const auto later = store.temporary / "later";
  fs::copy_file(store.file, later);
  for (int round = 0; round < 40; ++round) {
    ChildProcess child([&](const Channel& parent) {
      parent.send(1);
      for (;;) {
        if (!restore(backup) || !restore(later)) return;
      }
    });
    ASSERT_TRUE(child.channel().number().has_value());
    std::this_thread::sleep_for(std::chrono::microseconds(700 * round));
    child.kill();
    const auto found = present();
    ASSERT_TRUE(found == before || found == after) << "round " << round;
  }
}

}  // namespace
}  // namespace quorlo
