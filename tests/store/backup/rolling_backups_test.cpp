// When the program copies its library by itself.

#include "store/backup/rolling_backups.h"
#include "fakes/fake_background_queue.h"
#include "store/backup/library_backups.h"
#include "whole_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace quorlo {
namespace {

using namespace std::chrono_literals;

struct RollingBackupsTest : testing::Test {
  TestStore store;
  TestLibrary library{std::make_unique<SqliteRecordStore>(store.open().value())};
  FakeBackgroundQueue background;
  BackupFolder folder = BackupFolder::of(store.directory);
  bool isOn = true;
  std::vector<std::string> failures;
  LibraryBackups copies{{.mainQueue = library.queue,
                         .backgroundQueue = background,
                         .dataDirectory = store.directory,
                         .now = [this] { return library.environment.date; }}};
  RollingBackups backups{{.mainQueue = library.queue,
                          .backups = copies,
                          .context = library.context,
                          .now = [this] { return library.environment.date; },
                          .isOn = [this] { return isOn; },
                          .failed = [this](const Error& error) { failures.push_back(error.message); }}};

  void SetUp() override {
    ASSERT_TRUE(library.context.load().ok());
    backups.start();
  }
  // Both clocks, and the work that falls due meanwhile.
  void pass(std::chrono::minutes time) {
    for (auto passed = 0min; passed < time; passed += 10min) {
      library.environment.date += 10min;
      library.queue.advance(Seconds(600));
      background.runAll();
      library.queue.runDue();
    }
  }
  void change() {
    library.snippet(u"Title");
    ASSERT_TRUE(library.context.save().ok());
  }
  std::size_t count() const { return folder.backups().size(); }
};

TEST_F(RollingBackupsTest, EachDayWithAChangeHasACopyAndNoOther) {
  change();
  pass(10min);
  EXPECT_EQ(count(), 1U);
  pass(72h);
  EXPECT_EQ(count(), 1U) << "nothing has changed";
  EXPECT_TRUE(library.queue.idle()) << "nothing waits while nothing changes";
  for (int day = 0; day < 5; ++day) {
    for (int i = 0; i < 6; ++i) {
      change();
      pass(4h);
    }
  }
  EXPECT_EQ(count(), 6U);

  isOn = false;
  change();
  pass(48h);
  EXPECT_EQ(count(), 6U);
}

TEST_F(RollingBackupsTest, AClockThatIsSetDoesNotWearTheCopiesOut) {
  change();
  pass(10min);
  const auto right = library.environment.date;
  library.environment.date += 24h * 365 * 73;
  change();
  pass(10min);
  EXPECT_EQ(count(), 2U) << "for all it knows, a day has passed";
  library.environment.date = right + 10min;
  for (int i = 0; i < 5; ++i) {
    change();
    pass(10min);
  }
  EXPECT_EQ(count(), 2U) << "the clock may be corrected soon";
  pass(2h);
  EXPECT_EQ(count(), 3U) << "copies do not wait for the year of the wrong clock";
  change();
  pass(2h);
  EXPECT_EQ(count(), 3U);
}

TEST_F(RollingBackupsTest, AFailureIsToldOnceAndTriedAgain) {
  write(folder.path(), "a file where the folder should be");
  change();
  pass(5h);
  EXPECT_EQ(failures.size(), 1U);
  std::filesystem::remove(folder.path());
  pass(2h);
  EXPECT_EQ(count(), 1U);

  std::filesystem::remove_all(folder.path());
  write(folder.path(), "");
  change();
  pass(30h);
  EXPECT_EQ(failures.size(), 2U);
}

}  // namespace
}  // namespace quorlo
