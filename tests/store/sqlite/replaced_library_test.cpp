// The library's file is replaced, overwritten or deleted while a program has it open: nothing that was
// acknowledged or stands in memory is lost, and nothing is written into a file that has no name any more.

#include "store/persistence_controller.h"

#include "fakes/fake_environment.h"
#include "fakes/fake_main_queue.h"
#include "store/library_notice.h"
#include "store/records/ql_snippet.h"
#include "test_store.h"
#include "text/utf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using Kind = LibraryNotice::Kind;

class ReplacedLibrary : public testing::Test {
 protected:
  void SetUp() override {
    environment_.data = test_.directory;
    test_.make(
        "INSERT INTO Snippet(uuid, title, plainText) VALUES('A', 'first', 'one'), ('B', 'second', 'two')");
    fs::copy_file(test_.file, backup_);
    auto opened = PersistenceController::open(queue_, environment_, {});
    ASSERT_TRUE(opened) << opened.error().message;
    controller_ = std::move(opened).value();
    controller_->setNoticeHandler([this](const auto& notice) {
      notices_.push_back(notice.kind);
      detail_ = notice.detail;
    });
    add(u"saved after the backup");
    controller_->save();
    add(u"not saved yet");
  }

  void add(const std::u16string& title) {
    controller_->managedObjectContext().insert<QLSnippet>()->setTitle(title);
  }

  std::vector<std::string> titles() const {
    std::vector<std::string> all;
    for (const auto& each : controller_->managedObjectContext().fetch<QLSnippet>({}).value())
      all.push_back(toUtf8(each->title()));
    return all;
  }

  static std::string titlesIn(const fs::path& file) {
    SqliteDatabase database(file);
    if (auto status = database.open(SqliteDatabase::Access::readOnly); !status) return status.error().message;
    return rows(database, "SELECT title FROM Snippet ORDER BY row", 1);
  }

  void noticeAndRecover() {
    EXPECT_FALSE(controller_->storeIsInPlace());
    queue_.advance(Seconds(10));
    EXPECT_TRUE(controller_->storeIsInPlace());
  }

  static constexpr auto kEverything = "first\nsecond\nsaved after the backup\nnot saved yet\n";

  TestStore test_;
  fs::path backup_ = test_.temporary / "backup";
  FakeMainQueue queue_;
  FakeEnvironment environment_;
  std::unique_ptr<PersistenceController> controller_;
  std::vector<Kind> notices_;
  std::string detail_;
};

TEST_F(ReplacedLibrary, GoesOnWithTheNewFileAndKeepsWhatItHadInAnotherOne) {
  fs::rename(backup_, test_.file);
  noticeAndRecover();
  EXPECT_THAT(notices_, ElementsAre(Kind::fileWasReplaced));
  EXPECT_THAT(detail_, HasSubstr("private.sqlite.rescued-"));
  EXPECT_EQ(titlesIn(detail_), kEverything);
  EXPECT_EQ(fs::status(detail_).permissions(), fs::perms(0600));
  EXPECT_THAT(titles(), ElementsAre("first", "second"));

  EXPECT_TRUE(controller_->builtInFolder(CategoryType::AllSnippets));

  add(u"into the new file");
  controller_->save();
  EXPECT_EQ(titlesIn(test_.file), "first\nsecond\ninto the new file\n");
}

TEST_F(ReplacedLibrary, NoticesAFileThatWasWrittenOver) {
  test_.log.clear();
  {
    SqliteDatabase merging(test_.file);
    ASSERT_TRUE(merging.open(SqliteDatabase::Access::readWrite) &&
                merging.integer("PRAGMA wal_checkpoint(TRUNCATE)"));
  }
  ASSERT_TRUE(controller_->storeIsInPlace());
  fs::copy_file(backup_, test_.file, fs::copy_options::overwrite_existing);
  fs::last_write_time(test_.file, fs::last_write_time(test_.file) - std::chrono::minutes(1));
  noticeAndRecover();
  EXPECT_THAT(notices_, ElementsAre(Kind::fileWasReplaced));
  EXPECT_EQ(titlesIn(detail_), kEverything);
  EXPECT_THAT(titles(), ElementsAre("first", "second"));
}

TEST_F(ReplacedLibrary, IsWrittenBackWhenItsFileIsDeleted) {
  fs::remove(test_.file);
  controller_->save();  // goes nowhere yet
  noticeAndRecover();
  EXPECT_THAT(notices_, ElementsAre(Kind::fileWasDeleted));
  EXPECT_EQ(titlesIn(test_.file), kEverything);
  add(u"later");
  controller_->save();
  EXPECT_EQ(titlesIn(test_.file), std::string(kEverything) + "later\n");
  EXPECT_EQ(fs::status(test_.file).permissions(), fs::perms(0600));
}

TEST_F(ReplacedLibrary, IsWrittenBackBeforeTheProgramEnds) {
  fs::remove(test_.file);
  controller_->makeSureOfStore();
  controller_.reset();
  EXPECT_EQ(titlesIn(test_.file), kEverything);
}

TEST_F(ReplacedLibrary, KeepsSavingBesideAFileThatIsNoLibraryUntilThereIsOneAgain) {
  fs::remove(test_.file);
  write(test_.file, std::string(9000, 'x'));
  fs::last_write_time(test_.file, fs::last_write_time(test_.file) - std::chrono::minutes(1));
  EXPECT_FALSE(controller_->storeIsInPlace());
  queue_.advance(Seconds(10));
  EXPECT_THAT(notices_, ElementsAre(Kind::cannotBeOpened));
  add(u"meanwhile");
  controller_->save();
  EXPECT_EQ(titles().size(), 5U);

  fs::rename(backup_, test_.file);
  noticeAndRecover();
  EXPECT_EQ(notices_.back(), Kind::fileWasReplaced);
  EXPECT_EQ(titlesIn(detail_), std::string(kEverything) + "meanwhile\n");
  EXPECT_THAT(titles(), ElementsAre("first", "second"));
}

}  // namespace
}  // namespace quorlo
