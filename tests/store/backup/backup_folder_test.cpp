// The copies of a library: complete, whole or not there, and none lost by the making of another.

#include "store/backup/backup_folder.h"
#include "store/sqlite/child_process.h"
#include "whole_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <thread>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

const auto kGoOn = [] { return true; };
constexpr auto kAddSnippet =
    "INSERT INTO Snippet(uuid, title, plainText) VALUES(hex(randomblob(16)), 'New', printf('%.*c', 3000, 'x'))";
// As a save does.
constexpr auto kSave =
    "INSERT INTO Snippet(uuid, title, plainText) VALUES(hex(randomblob(16)), 'New', printf('%.*c', 3000, 'x'));"
    "INSERT INTO HistoryTransaction(timestamp, author, contextName)"
    " SELECT coalesce(max(timestamp), 0) + 1, 'a', 'c' FROM HistoryTransaction";

struct BackupFolderTest : testing::Test {
  TestStore store;
  BackupFolder folder = BackupFolder::of(store.directory);
  Date now{std::chrono::seconds(1'700'000'000)};

  Result<BackupFolder::Addition> add() const {
    const auto library = store.open();
    return folder.add(*library.value(), now, kGoOn);
  }
  void change() const { store.make(kSave); }
  std::vector<int> numbers() const {
    std::vector<int> all;
    for (const auto& each : folder.backups()) all.push_back(each.number);
    return all;
  }
  std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (const auto& each : fs::directory_iterator(folder.path())) all.push_back(each.path().filename());
    return all;
  }
};

int mode(const fs::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

TEST_F(BackupFolderTest, ACopyHoldsEveryRowOfEveryTableAndIsOnePrivateFile) {
  const auto umask = ::umask(0);
  for (unsigned seed = 0; seed < 20; ++seed) {
    TestStore library;
    Random random(seed);
    fillAtRandom(library, random);
    const auto open = library.open();  // with what stands in the write-ahead log alone
    ASSERT_TRUE(open && open.value()->execute(kAddSnippet));
    const auto backups = BackupFolder::of(library.directory);
    const auto added = backups.add(*open.value(), now, kGoOn);
    ASSERT_TRUE(added.ok()) << added.error().message;
    const auto& file = added.value().backup.file;
    EXPECT_EQ(everything(file), everything(*open.value())) << "seed " << seed;
    EXPECT_EQ(added.value().contents.snippets,
              open.value()->integer("SELECT count(*) FROM Snippet WHERE deletionDate IS NULL").value());
    EXPECT_EQ(mode(file), 0600);
    EXPECT_EQ(mode(backups.path()), 0700);
    ASSERT_EQ(std::distance(fs::directory_iterator(backups.path()), {}), 1);
    EXPECT_EQ(backups.backups().front().file, file);
  }
  ::umask(umask);
}

TEST_F(BackupFolderTest, TheLastTenStayInTheOrderInWhichTheyWereMadeWhateverTheClockSays) {
  const int years[] = {0, 70, -50, 1, 0, 75, 2, -40, 0, 3, -30, 80, 0};
  for (const int year : years) {
    change();
    now = Date(std::chrono::seconds(1'700'000'000)) + std::chrono::hours(24 * 365 * year);
    ASSERT_TRUE(add().ok());
  }
  EXPECT_THAT(numbers(), ElementsAre(13, 12, 11, 10, 9, 8, 7, 6, 5, 4));
  EXPECT_EQ(folder.backups().front().date, now);

  write(folder.path() / "mine.sqlite", "of the user's own");
  const auto again = add();
  ASSERT_TRUE(again.ok());
  EXPECT_FALSE(again.value().isNew) << "nothing has changed";
  EXPECT_EQ(again.value().backup.number, 13);
  EXPECT_EQ(numbers().size(), 10U);
  EXPECT_EQ(contents(folder.path() / "mine.sqlite"), "of the user's own");
}

TEST_F(BackupFolderTest, ACopyIsOneMomentOfALibraryThatIsWrittenToMeanwhile) {
  store.make(
      "WITH RECURSIVE numbers(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 9000)"
      " INSERT INTO Snippet(uuid, title, plainText) SELECT 'U' || n, 'Snippet', printf('%.*c', 300, 'x') FROM numbers");
  const auto library = store.open();
  const auto before = everything(*library.value());
  int portions = 0;
  const auto writer = store.open();
  const auto file = store.directory / "copy";
  const auto draft = store.directory / "draft";
  const auto written = writeBackup(*library.value(), file, draft, [&] {
    ++portions;
    return writer.value()->execute(kAddSnippet).ok();
  });
  ASSERT_TRUE(written.ok()) << written.error().message;
  EXPECT_GT(portions, 3);
  EXPECT_EQ(everything(file), before);

  const auto stopped = writeBackup(*library.value(), file, draft, [&] { return --portions > 0; });
  EXPECT_FALSE(stopped.ok());
  EXPECT_EQ(everything(file), before);
  EXPECT_TRUE(isMissing(draft));
}

TEST_F(BackupFolderTest, ADamagedLibraryTakesNoPlaceAmongTheGoodCopies) {
  change();
  ASSERT_TRUE(add().ok());
  change();
  const auto good = names();
  auto bytes = contents(store.file);
  for (std::size_t i = bytes.size() - 8192; i < bytes.size(); ++i) bytes[i] = 'x';
  write(store.file, bytes);
  SqliteDatabase damaged(store.file);
  ASSERT_TRUE(damaged.open(SqliteDatabase::Access::readWrite).ok());
  const auto refused = folder.add(damaged, now, kGoOn);
  EXPECT_FALSE(refused.ok());
  EXPECT_EQ(names(), good);
}

TEST_F(BackupFolderTest, AProcessThatIsKilledLeavesWholeCopiesAndNoDraftForLong) {
  store.make(
      "WITH RECURSIVE numbers(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 9000)"
      " INSERT INTO Snippet(uuid, title, plainText) SELECT 'U' || n, 'Snippet', printf('%.*c', 300, 'x') FROM numbers");
  // Killed while it waits behind a portion, and then at any moment of one copy after the other.
  constexpr int kStops = 3;
  for (int round = 0; round < 20; ++round) {
    ChildProcess child([&](const Channel& parent) {
      for (;;) {
        change();
        const auto library = store.open();
        int portions = 0;
        const auto mayGoOn = [&] {
          if (portions++ == round % kStops) parent.send(portions);
          if (round < kStops && portions > round) std::this_thread::sleep_for(std::chrono::minutes(5));
          return true;
        };
        static_cast<void>(folder.add(*library.value(), now, mayGoOn));
      }
    });
    EXPECT_TRUE(child.channel().number().has_value());
    if (round >= kStops) std::this_thread::sleep_for(std::chrono::milliseconds(round));
    child.kill();
    for (const auto& each : folder.backups()) EXPECT_THAT(everything(each.file), HasSubstr("Snippet"));
    if (round < kStops) {
      EXPECT_THAT(names(), testing::Contains(testing::EndsWith(".new")));
    }
  }
  change();
  ASSERT_TRUE(add().ok());
  EXPECT_EQ(names().size(), numbers().size());
}

// Too little room on the disk, and a file that cannot grow any more while it is written.
std::string withoutRoom() {
  TestStore store;
  const auto folder = BackupFolder::of(store.directory);
  store.make(kSave);
  std::string report;
  const auto add = [&] {
    const auto library = store.open();
    const auto added = folder.add(*library.value(), Date(), kGoOn);
    report += added ? "added" : added.error().message;
    report += " " + std::to_string(std::distance(fs::directory_iterator(folder.path()), {})) + "\n";
  };
  add();
  store.make(kSave);
  ::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ::getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{60'000, limit.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &small);
  add();
  ::setrlimit(RLIMIT_FSIZE, &limit);
  if (::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0) {
    const auto disk = store.temporary / "disk";
    fs::create_directories(disk);
    if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=4m") == 0) {
      const auto library = store.open();
      const auto refused = BackupFolder(disk / "backups").add(*library.value(), Date(), kGoOn);
      report += refused ? "added\n" : refused.error().message + "\n";
      ::umount2(disk.c_str(), MNT_DETACH);
    }
  }
  add();
  return report;
}

TEST_F(BackupFolderTest, WithoutRoomNothingIsWrittenOrLost) {
  const auto report = inChild(withoutRoom);
  EXPECT_THAT(report, testing::MatchesRegex("added 1\n[^\n]* 1\n([^\n]*the disk is full[^\n]*\n)?added 2\n"));
}

}  // namespace
}  // namespace quorlo
