#include "store/persistence_controller.h"

#include "test_library.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quorlo {
namespace {

TEST(PersistenceController, SavesManyChangesOnceThreeAndAHalfSecondsAfterTheFirst) {
  TestLibrary library;
  const auto snippet = library.snippet(u"a");
  for (int i = 1; i <= 34; ++i) {
    library.queue.advance(Seconds(0.1));
    snippet->setUseCount(i);
  }
  EXPECT_TRUE(library.commits.empty());
  library.queue.advance(Seconds(0.2));
  EXPECT_EQ(library.commits.size(), 1U);
  EXPECT_FALSE(library.context.hasChanges());

  snippet->setUseCount(0);
  library.queue.settle();
  EXPECT_EQ(library.commits.size(), 2U);
}

TEST(PersistenceController, TellsOnceThatSavesFailAfterTheSecondFailure) {
  TestLibrary library;
  std::vector<LibraryNotice::Kind> notices;
  library.controller.setNoticeHandler([&](const auto& notice) { notices.push_back(notice.kind); });
  library.snippet(u"a");
  library.commitResult = Error{"the disk is full."};
  library.controller.save();
  EXPECT_TRUE(notices.empty());
  for (int i = 0; i < 3; ++i) library.controller.save();
  EXPECT_EQ(notices, std::vector{LibraryNotice::Kind::savesFail});
  ASSERT_TRUE(library.controller.saveFailure());
  EXPECT_EQ(library.controller.saveFailure()->message, "the disk is full.");
  library.commitResult = {};
  library.controller.save();
  EXPECT_FALSE(library.controller.saveFailure());
}

TEST(PersistenceController, ObservesItsOwnContextOnlyFromTheFirstSnippetOrFolderOn) {
  TestLibrary library;
  ManagedObjectContext other(library.queue, {.now = [] { return Date{}; }});
  library.controller.observeObjectsDidChange(other);
  other.insert<QLUser>();
  library.queue.runDue();
  EXPECT_TRUE(library.queue.idle());

  library.context.insert<QLUser>();
  library.queue.settle();
  EXPECT_TRUE(library.commits.empty());

  library.folder(CategoryType::Folder);
  library.queue.settle();
  ASSERT_EQ(library.commits.size(), 1U);
  EXPECT_EQ(library.commits[0].inserted.size(), 2U);
}

TEST(PersistenceController, LogsAFailedSaveAndTriesAgainLaterAndLater) {
  TestLibrary library;
  const auto saved = library.snippet(u"saved");
  library.queue.settle();
  library.commitResult = Error{"the disk is full"};
  saved->setTitle(u"changed");
  library.snippet(u"fresh");
  library.queue.advance(Seconds(4));
  EXPECT_EQ(library.log, std::vector<std::string>{"Unresolved error the disk is full"});
  EXPECT_TRUE(library.context.hasChanges());
  library.queue.advance(Seconds(600));
  EXPECT_LT(library.log.size(), 20U);

  library.commitResult = {};
  library.queue.advance(Seconds(61));
  ASSERT_EQ(library.commits.size(), 2U);
  EXPECT_EQ(library.commits[1].inserted.size(), 1U);
  EXPECT_EQ(library.commits[1].updated.size(), 1U);
}

TEST(PersistenceController, DefersARequestedSaveOnlyDuringTheFirstThreeSeconds) {
  TestLibrary library;
  library.context.insert<QLUser>();
  library.queue.advance(Seconds(1));
  library.controller.requestDeferredSave();
  library.controller.requestDeferredSave();
  library.queue.advance(Seconds(3.4));
  EXPECT_TRUE(library.commits.empty());
  library.queue.advance(Seconds(0.2));
  EXPECT_EQ(library.commits.size(), 1U);

  library.context.insert<QLUser>();
  library.controller.requestDeferredSave();
  EXPECT_EQ(library.commits.size(), 2U);
}

TEST(PersistenceController, DropsWhatItHasScheduledWhenItGoes) {
  FakeMainQueue queue;
  std::vector<ChangeSet> commits;
  const Status result;
  {
    FakeEnvironment environment;
    PersistenceController controller(queue, environment,
                                     {.store = std::make_unique<FakeRecordStore>(commits, result)});
    controller.managedObjectContext().insert<QLSnippet>();
    controller.requestDeferredSave();
    queue.runDue();
  }
  queue.settle();
  EXPECT_TRUE(commits.empty());
}

TEST(PersistenceController, FindsALiveSnippetBeforeATrashedOneAndMakesOneUserOnly) {
  TestLibrary library;
  const auto trashed = library.snippet(u"trashed", u"sig");
  trashed->moveToTrash();
  EXPECT_EQ(library.controller.snippetForAbbreviation(u"sig"), trashed);
  const auto live = library.snippet(u"live", u"sig");
  EXPECT_EQ(library.controller.snippetForAbbreviation(u"sig"), live);
  EXPECT_EQ(library.controller.snippet(trashed->uuid()), trashed);
  const auto user = library.controller.currentUser();
  EXPECT_EQ(library.controller.currentUser(), user);
}

TEST(PersistenceController, NamesANewFolderByTheFirstNumberThatIsFree) {
  TestLibrary library;
  EXPECT_EQ(library.controller.nextUntitledName(), u"Untitled");
  for (const auto* title : {u"Untitled 2", u"untitled", u"My Untitled"}) {
    library.folder(CategoryType::Folder)->setTitle(title);
  }
  EXPECT_EQ(library.controller.nextUntitledName(), u"Untitled");
  for (const auto* next : {u"Untitled", u"Untitled 3", u"Untitled 4"}) {
    EXPECT_EQ(library.controller.nextUntitledName(), next);
    library.folder(CategoryType::Folder)->setTitle(next);
  }
}

TEST(PersistenceController, AnswersForFoldersAndForSnippetsByWhereTheyAre) {
  TestLibrary library;
  auto& controller = library.controller;
  const auto young = library.folder(CategoryType::Trash, SourceType::General);
  const auto old = library.folder(CategoryType::Trash, SourceType::General);
  old->setCreationDate(Date());
  const auto letters = library.folder(CategoryType::Folder);
  letters->setTitle(u"Letters");
  const auto shared = library.folder(CategoryType::SharedFolder, SourceType::Public);
  shared->setTitle(u"Letters of others");
  using Folders = std::vector<std::shared_ptr<QLCategory>>;
  EXPECT_EQ(controller.builtInFolder(CategoryType::Trash), old);
  EXPECT_EQ(controller.folder(young->uuid()), young);
  EXPECT_EQ(controller.userFoldersByTitle(u"LETTER"), Folders{letters});
  EXPECT_EQ(controller.foldersOfSection(SourceType::Public, CategoryType::Trash),
            (Folders{young, old, shared}));

  const auto live = library.snippet(u"live", u"a");
  const auto trashed = library.snippet(u"trashed", u"b");
  trashed->moveToTrash();
  const auto foreign = library.snippet(u"foreign", u"c");
  foreign->setCategory(shared.get());
  library.snippet(u"without");
  EXPECT_EQ(controller.activeAbbreviations(), std::vector<std::u16string>{u"a"});
  EXPECT_EQ(controller.trashedSnippets(), std::vector{trashed});
  EXPECT_EQ(controller.snippetsOutsideSharedFolders().size(), 3U);
}

TEST(PersistenceController, PutsOffTheSavesThatComeByThemselvesWhileSomebodyWritesForLong) {
  TestLibrary library;
  auto deferral = library.controller.deferSaves();
  auto another = library.controller.deferSaves();
  library.snippet(u"waits");
  library.queue.advance(Seconds(10));
  deferral.reset();
  library.queue.advance(Seconds(10));
  EXPECT_TRUE(library.commits.empty());
  another.reset();
  library.queue.advance(Seconds(4));
  EXPECT_EQ(library.commits.size(), 1U);
  EXPECT_FALSE(library.context.hasChanges());
}

}  // namespace
}  // namespace quorlo
