// What stands in the way of a store: the error tells the user what to do, nothing in the file is changed, a
// damaged one is copied, and no empty library ever takes its place.

#include "child_process.h"
#include "open_library.h"
#include "test_store.h"
#include "text/utf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>

#include <thread>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr auto kLoadFailure = "###persistentContainer: Failed to load persistent stores: ";
constexpr auto kManySnippets =
    "WITH RECURSIVE numbers(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 300)"
    " INSERT INTO Snippet(uuid, title, plainText) SELECT n, 'Snippet ' || n, printf('%.*c', 90, 'x') FROM numbers";

// What the program has in memory after loading; the error's message when that fails.
std::string allRecords(const TestStore& test) {
  OpenLibrary library(test.directory);
  std::string all = library.failure();
  if (!all.empty()) return all;
  for (const auto& each : library.all<QLSnippet>()) {
    all += std::to_string(each->rowNumber()) + toUtf8(each->title() + each->plainText()) + "\n";
  }
  return all;
}

std::vector<fs::path> copies(const TestStore& test) {
  std::vector<fs::path> found;
  for (const auto& entry : fs::directory_iterator(test.directory)) {
    const auto name = entry.path().filename().string();
    if (name.find(".damaged-") != std::string::npos && !name.ends_with("-shm") && !name.ends_with("-wal")) {
      found.push_back(entry.path());
    }
  }
  return found;
}

void expectLeftAndCopied(const TestStore& test, const std::string& message, const std::string& bytes) {
  EXPECT_THAT(message, StartsWith(kLoadFailure));
  EXPECT_EQ(contents(test.file), bytes);
  ASSERT_EQ(copies(test).size(), 1U);
  EXPECT_EQ(contents(copies(test).front()), bytes);
  EXPECT_THAT(message, HasSubstr("A copy is kept as \"" + copies(test).front().string() + "\""));
}

TEST(StoreFaults, WhatIsNoLibraryIsLeftAndCopiedOnce) {
  TestStore foreign;
  foreign.make();
  {
    SqliteDatabase database(foreign.file);
    ASSERT_TRUE(database.open(SqliteDatabase::Access::readWrite) &&
                database.execute("PRAGMA user_version = 0"));
  }
  for (const auto& bytes :
       {std::string(), std::string("{}"), std::string(9000, 'x'), contents(foreign.file)}) {
    TestStore test;
    write(test.file, bytes);
    for (int time = 0; time < 2; ++time) expectLeftAndCopied(test, allRecords(test), bytes);
  }
}

TEST(StoreFaults, AStoreCutOrBlankedAnywhereIsReadWholeOrReportedAsDamaged) {
  TestStore whole;
  whole.make(kManySnippets);
  const auto bytes = contents(whole.file);
  const auto records = allRecords(whole);
  ASSERT_GT(bytes.size(), 20U * 4096);
  std::vector<std::string> damaged;
  for (std::size_t page = 0; page < bytes.size(); page += 4096) {
    for (const std::size_t beyond : {0U, 2048U}) damaged.push_back(bytes.substr(0, page + beyond));
    damaged.push_back(bytes);
    damaged.back().replace(page, 4096, 4096, '\0');
  }
  int reported = 0;
  for (const auto& each : damaged) {
    TestStore test;
    write(test.file, each);
    const auto found = allRecords(test);
    if (found == records) continue;  // a page of an index, for example
    ++reported;
    ASSERT_THAT(found, StartsWith(kLoadFailure)) << each.size();
    expectLeftAndCopied(test, found, each);
  }
  EXPECT_GT(reported, static_cast<int>(damaged.size() * 7 / 10));
}

// A log that was cut by a crash holds the first so many saves; they are all there, and the file goes on.
TEST(StoreFaults, AWriteAheadLogCutAnywhereKeepsTheSavesBeforeTheCut) {
  TestStore whole;
  {
    const auto store = whole.open();
    for (int save = 1; save <= 5; ++save) {
      ASSERT_TRUE(store.value()->execute("INSERT INTO App(type) VALUES (" + std::to_string(save) + ")"));
    }
    store.value()->closeUntouched();
  }
  const auto log = contents(whole.file.string() + "-wal");
  std::string before;
  for (std::size_t length = 0; length < log.size() + 1024; length += 1024) {
    TestStore test;
    write(test.file, contents(whole.file));
    write(test.file.string() + "-wal", log.substr(0, length));
    const auto store = test.open();
    ASSERT_TRUE(store) << store.error().message;
    const auto kept = rows(*store.value(), "SELECT type FROM App", 1);
    EXPECT_TRUE(std::string("1\n2\n3\n4\n5\n").starts_with(kept) && kept.starts_with(before)) << kept;
    EXPECT_EQ(rows(*store.value(), "PRAGMA integrity_check", 1), "ok\n");
    before = kept;
  }
  EXPECT_EQ(before, "1\n2\n3\n4\n5\n");
}

TEST(StoreFaults, AStoreOfANewerQuorloIsLeftAlone) {
  TestStore test;
  test.make("PRAGMA user_version = 4");
  const auto bytes = contents(test.file);
  EXPECT_THAT(allRecords(test), AllOf(StartsWith(kLoadFailure), HasSubstr("made by a newer Quorlo")));
  EXPECT_EQ(contents(test.file), bytes);
  EXPECT_TRUE(copies(test).empty());
}

TEST(StoreFaults, AHeldStoreIsWaitedForAndThenReportedAsHeld) {
  TestStore test;
  test.make();
  SqliteDatabase holder(test.file);
  ASSERT_TRUE(holder.open(SqliteDatabase::Access::readWrite));
  ASSERT_TRUE(holder.execute("PRAGMA locking_mode = EXCLUSIVE; UPDATE User SET savedChars = 0"));
  const auto store = test.open(std::chrono::milliseconds(20));
  ASSERT_FALSE(store);
  EXPECT_THAT(store.error().message, AllOf(StartsWith(kLoadFailure), HasSubstr("another program holds it")));
  EXPECT_TRUE(copies(test).empty());

  std::string waited;
  std::jthread opener([&] { waited = allRecords(test); });
  holder.close();
  opener.join();
  EXPECT_EQ(waited, "");
}

// Rights do not bind root, so a child process gives them up.
std::string asNobody(const std::function<std::string()>& work) {
  return inChild([&]() -> std::string {
    constexpr unsigned kNobody = 65534;
    if (::getuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) return "still root";
    return work();
  });
}

TEST(StoreFaults, ADirectoryThatMayNotBeWrittenIsReported) {
  TestStore test;
  test.make();
  const auto bytes = contents(test.file);
  fs::permissions(test.temporary.path(), fs::perms(0755));
  const auto attempt = [&test] { return allRecords(test); };

  fs::permissions(test.file, fs::perms(0666));  // but no log can be made beside it
  fs::permissions(test.directory, fs::perms(0555));
  EXPECT_THAT(asNobody(attempt), AllOf(StartsWith(kLoadFailure), HasSubstr("may not be written")));
  fs::permissions(test.file, fs::perms(0444));
  EXPECT_THAT(asNobody(attempt), AllOf(StartsWith(kLoadFailure), HasSubstr("may not be written")));
  fs::permissions(test.file, fs::perms(0000));
  EXPECT_THAT(asNobody(attempt), AllOf(StartsWith(kLoadFailure), HasSubstr("may not be written")));
  fs::permissions(test.file, fs::perms(0600));
  EXPECT_EQ(contents(test.file), bytes);

  fs::permissions(test.directory, fs::perms(0755));
  fs::remove(test.file);
  fs::permissions(test.directory, fs::perms(0555));
  EXPECT_THAT(asNobody(attempt), AllOf(StartsWith(kLoadFailure), HasSubstr("could not be begun")));
  test.directory = test.temporary / "other";
  fs::permissions(test.temporary.path(), fs::perms(0555));
  EXPECT_THAT(asNobody(attempt), StartsWith("Shared file container could not be created."));
  fs::permissions(test.temporary.path(), fs::perms(0755));
  fs::permissions(test.directory = test.temporary / "data", fs::perms(0755));
}

// A view of the file system of this process's own, in which it may mount.
bool mayMount() {
  const auto user = "0 " + std::to_string(::getuid()) + " 1";
  const auto group = "0 " + std::to_string(::getgid()) + " 1";
  if (::unshare(CLONE_NEWNS) != 0) {
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    std::ofstream("/proc/self/uid_map") << user;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/gid_map") << group;
  }
  return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// A small disk of the child's own, filled and emptied again. "no disk" where none may be mounted.
std::string onAFullDisk() {
  TestStore test;
  fs::create_directories(test.directory);
  const bool isMounted = mayMount() && ::mount("tmpfs", test.directory.c_str(), "tmpfs", 0, "size=1m") == 0;
  if (!isMounted) return "no disk";
  const auto filler = test.temporary / "data" / "filler";
  const auto fill = [&filler] { write(filler, std::string(1 << 20, 'x')); };

  fill();
  std::string report = OpenLibrary(test.directory).failure() + "\n";
  fs::remove(filler);
  {
    OpenLibrary library(test.directory);
    if (!library.failure().empty()) return library.failure();
    fill();
    library.context().insert<QLSnippet>()->setPlainText(std::u16string(100'000, u'x'));
    const auto refused = library.context().save();
    report += refused ? "saved on a full disk" : refused.error().message;
    report += library.context().hasChanges() ? "\nunsaved\n" : "\nforgotten\n";
    fs::remove(filler);
    if (const auto saved = library.context().save(); !saved) return saved.error().message;
  }
  fill();
  report += OpenLibrary(test.directory).failure() + "\n";
  fs::remove(filler);
  OpenLibrary library(test.directory);
  report += library.failure() + std::to_string(library.all<QLSnippet>().size()) + "\n" +
            rows(library.database(), "PRAGMA integrity_check", 1);
  ::umount2(test.directory.c_str(), MNT_DETACH);
  return report;
}

TEST(StoreFaults, AFullDiskIsReportedAndTheStoreGoesOnOnceThereIsRoom) {
  const auto report = inChild(onAFullDisk);
  if (report == "no disk") GTEST_SKIP() << "no tmpfs may be mounted here";
  EXPECT_THAT(report, testing::MatchesRegex(std::string(kLoadFailure) +
                                            "[^\n]*the disk has room[^\n]*\n"
                                            "[^\n]*the disk is full[^\n]*\nunsaved\n" +
                                            kLoadFailure + "[^\n]*the disk is full[^\n]*\n1\nok\n"));
}

}  // namespace
}  // namespace quorlo
