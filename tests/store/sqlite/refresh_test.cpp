// What becomes of a record that is changed here, not saved yet, and changed by another process meanwhile.

#include "shared_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorlo {
namespace {

using testing::UnorderedElementsAre;

TEST(Refresh, TakesWhatOthersChangedPropertyByPropertyAndTellsItWithoutAnUnsavedChange) {
  SharedLibrary library;
  const auto snippet = library.snippet(u"old", u"abc");
  const auto folder = library.here.insert<QLCategory>();
  const auto app = library.here.insert<QLApp>();
  app->setBundleID("org.example.Editor");
  ASSERT_TRUE(library.here.save());
  snippet->setTitle(u"title from here");

  const auto other = library.other();
  const auto theirs = SharedLibrary::in(*other, *snippet);
  theirs->setTitle(u"title from there");
  theirs->setAbbreviation(u"xyz");
  theirs->setUseCount(7);
  theirs->setCategory(SharedLibrary::in(*other, *folder).get());
  theirs->addAllowedApp(*SharedLibrary::in(*other, *app));
  SharedLibrary::in(*other, *folder)->setTitle(u"renamed");
  ASSERT_TRUE(other->save());

  library.open.queue().runDue();
  std::vector<ChangeSet> told;
  const auto contextObserver =
      library.here.observeObjectsDidChange([&](const ChangeSet& changes) { told.push_back(changes); });
  std::vector<std::string> names;
  const auto observer = snippet->observeChanges([&](std::string_view name) { names.emplace_back(name); });
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(snippet->title(), u"title from here");
  EXPECT_EQ(snippet->useCount(), 7);
  EXPECT_EQ(snippet->category(), folder);
  EXPECT_TRUE(snippet->allowedApps().contains(app.get()));
  EXPECT_EQ(folder->title(), u"renamed");
  EXPECT_EQ(library.here.liveSnippet(u"xyz").value(), snippet);
  EXPECT_EQ(library.here.liveSnippet(u"abc").value(), nullptr);
  EXPECT_THAT(names, UnorderedElementsAre("useCount", "category", "abbreviation", "allowedApps"));
  EXPECT_TRUE(folder->changedProperties().empty());
  library.open.queue().runDue();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_THAT(told[0].updated, UnorderedElementsAre(snippet, folder, app));

  ASSERT_TRUE(library.here.save());
  EXPECT_EQ(library.stored(), Description::of(library.here));
  ASSERT_TRUE(library.refresh());
  EXPECT_FALSE(library.here.hasChanges());
}

TEST(Refresh, MakesRecordsThatCameAndDropsThoseThatWent) {
  SharedLibrary library;
  const auto doomed = library.here.insert<QLCategory>();
  const auto snippet = library.snippet(u"a", u"abc");
  snippet->setCategory(doomed.get());
  const auto gone = library.snippet(u"gone", u"gone");
  ASSERT_TRUE(library.here.save());

  const auto other = library.other();
  other->deleteObject(*SharedLibrary::in(*other, *gone));
  other->deleteObject(*SharedLibrary::in(*other, *doomed));
  const auto fresh = other->insert<QLSnippet>();
  fresh->setUuid("fresh");
  fresh->setAbbreviation(u"new");
  ASSERT_TRUE(other->save());
  // Comes only with the next news, but the snippet in it is read with the folder already.
  const auto news = library.news();
  const auto folder = other->insert<QLCategory>();
  folder->setUuid("folder");
  fresh->setCategory(folder.get());
  ASSERT_TRUE(other->save());

  ASSERT_TRUE(library.here.refresh(news));
  EXPECT_FALSE(library.here.hasChanges());
  EXPECT_TRUE(gone->isDeleted());
  EXPECT_TRUE(doomed->isDeleted());
  EXPECT_EQ(snippet->category(), nullptr);
  EXPECT_EQ(library.here.liveSnippet(u"gone").value(), nullptr);
  ASSERT_NE(library.here.liveSnippet(u"new").value(), nullptr);
  EXPECT_EQ(Description::of(library.here), library.stored());
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(Description::of(library.here), library.stored());
}

TEST(Refresh, LeavesDeletedWhatIsDeletedHere) {
  SharedLibrary library;
  const auto snippet = library.snippet(u"a");
  const auto both = library.snippet(u"b");
  ASSERT_TRUE(library.here.save());
  const auto other = library.other();
  SharedLibrary::in(*other, *snippet)->setTitle(u"changed there");
  other->deleteObject(*SharedLibrary::in(*other, *both));
  ASSERT_TRUE(other->save());
  library.here.deleteObject(*snippet);
  library.here.deleteObject(*both);
  ASSERT_TRUE(library.refresh());
  EXPECT_TRUE(library.open.all<QLSnippet>().empty());
  ASSERT_TRUE(library.here.save());
  EXPECT_EQ(library.stored(), "");
}

// Whether the save or the news comes first: the records are stored again in their rows, and with them what
// led to them.
TEST(Refresh, KeepsWhatIsChangedHereAndDeletedElsewhereWithItsRelationships) {
  for (const bool isToldBeforeTheSave : {true, false}) {
    SCOPED_TRACE(isToldBeforeTheSave);
    SharedLibrary library;
    const auto folder = library.here.insert<QLCategory>();
    const auto app = library.here.insert<QLApp>();
    const auto inFolder = library.snippet(u"in the folder");
    inFolder->setCategory(folder.get());
    inFolder->addBlockedSnippet(*app);
    const auto rich = library.snippet(u"rich", u"rich");
    rich->setText(bold(u"text"));
    ASSERT_TRUE(library.here.save());
    const auto row = rich->rowNumber();

    const auto other = library.other();
    other->deleteObject(*SharedLibrary::in(*other, *folder));
    other->deleteObject(*SharedLibrary::in(*other, *app));
    other->deleteObject(*SharedLibrary::in(*other, *rich));
    ASSERT_TRUE(other->save());
    folder->setTitle(u"renamed");
    app->setBundleID("org.example.Other");
    rich->setTitle(u"renamed");

    if (isToldBeforeTheSave) {
      ASSERT_TRUE(library.refresh());
    }
    ASSERT_TRUE(library.here.save());
    ASSERT_TRUE(library.refresh());
    EXPECT_FALSE(library.here.hasChanges());
    EXPECT_EQ(inFolder->category(), folder);
    EXPECT_TRUE(inFolder->blockedSnippets().contains(app.get()));
    EXPECT_EQ(rich->rowNumber(), row);
    EXPECT_FALSE(rich->text().isPlain());
    EXPECT_EQ(library.stored(), Description::of(library.here));
  }
}

// A use, a date, another place: no work of the user is lost with them.
TEST(Refresh, OfWhatIsDeletedElsewhereCountsAndDatesReviveNothing) {
  for (const bool isToldBeforeTheSave : {true, false}) {
    SCOPED_TRACE(isToldBeforeTheSave);
    SharedLibrary library;
    const auto folder = library.here.insert<QLCategory>();
    const auto used = library.snippet(u"used", u"use");
    const auto trashed = library.snippet(u"trashed");
    const auto user = library.here.insert<QLUser>();
    ASSERT_TRUE(library.here.save());
    const auto other = library.other();
    for (const auto& each : {used, trashed}) other->deleteObject(*SharedLibrary::in(*other, *each));
    other->deleteObject(*SharedLibrary::in(*other, *folder));
    other->deleteObject(*SharedLibrary::in(*other, *user));
    ASSERT_TRUE(other->save());
    used->setUseCount(3);
    used->setModifiedDate(Date{});
    used->setCategory(folder.get());
    trashed->setDeletionDate(Date{});
    folder->setSort(7);
    user->setSavedChars(9);
    if (isToldBeforeTheSave) {
      ASSERT_TRUE(library.refresh());
    }
    ASSERT_TRUE(library.here.save());
    EXPECT_FALSE(library.here.hasChanges());
    EXPECT_TRUE(used->isDeleted());
    EXPECT_EQ(library.here.liveSnippet(u"use").value(), nullptr);
    EXPECT_EQ(library.stored(), "");
    EXPECT_EQ(Description::of(library.here), "");
  }
}

// Its formats were never read here before it was changed.
TEST(Refresh, ASnippetThatIsChangedHereComesBackWithItsFormats) {
  SharedLibrary library;
  const auto made = library.snippet(u"rich");
  made->setText(bold(u"text"));
  made->setUseCount(4);
  ASSERT_TRUE(library.here.save());
  const auto fresh = library.other("fresh");
  const auto snippet = SharedLibrary::in(*fresh, *made);
  snippet->setTitle(u"renamed");
  library.here.deleteObject(*made);
  ASSERT_TRUE(library.here.save());
  ASSERT_TRUE(fresh->save());
  const auto later = library.other();
  const auto stored = SharedLibrary::in(*later, *snippet);
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(stored->text(), bold(u"text"));
  EXPECT_EQ(stored->title(), u"renamed");
  EXPECT_EQ(stored->useCount(), 4);
}

TEST(Refresh, APurgeLeavesWhatOthersHaveRestoredAndAnyTrashWhileTheClockIsFarAhead) {
  SharedLibrary library;
  const auto longAgo = std::chrono::system_clock::now() - std::chrono::days(40);
  const auto restored = library.snippet(u"restored");
  const auto due = library.snippet(u"due");
  for (const auto& each : {restored, due}) each->setDeletionDate(longAgo);
  ASSERT_TRUE(library.here.save());
  const auto other =
      openBackgroundContext(library.files.file, {.transactionAuthor = "other",
                                                 .now = [] { return std::chrono::system_clock::now(); }})
          .value();
  SharedLibrary::in(*other, *restored)->restoreFromTrash();
  ASSERT_TRUE(other->save());
  const auto late =
      openBackgroundContext(library.files.file,
                            {.transactionAuthor = "late",
                             .now = [] { return std::chrono::system_clock::now() + std::chrono::days(200); }})
          .value();
  EXPECT_TRUE(late->purgeTrash(late->now()).value().empty());
  EXPECT_EQ(library.here.purgeTrash(longAgo + std::chrono::days(1)).value(), std::vector{due});
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(library.open.all<QLSnippet>(), std::vector{restored});
  EXPECT_EQ(restored->deletionDate(), std::nullopt);
  EXPECT_EQ(library.stored(), Description::of(library.here));
}

TEST(Refresh, TakesATextWholeOrNotAtAll) {
  SharedLibrary library;
  const auto untouched = library.snippet(u"a");
  const auto edited = library.snippet(u"b");
  for (const auto& each : {untouched, edited}) each->setText(bold(u"old"));
  ASSERT_TRUE(library.here.save());
  edited->setText(bold(u"from here"));

  const auto other = library.other();
  for (const auto& each : {untouched, edited}) {
    SharedLibrary::in(*other, *each)->setText(AttributedString(u"from there"));
  }
  ASSERT_TRUE(other->save());
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(untouched->text(), AttributedString(u"from there"));
  EXPECT_EQ(edited->text(), bold(u"from here"));
  EXPECT_EQ(edited->plainText(), u"from here");
  ASSERT_TRUE(library.here.save());
  EXPECT_EQ(library.stored(), Description::of(library.here));

  // Other attributes of the same characters.
  const auto third = library.other("third");
  SharedLibrary::in(*third, *untouched)->setText(bold(u"from there"));
  SharedLibrary::in(*third, *edited)->setUseCount(5);
  ASSERT_TRUE(third->save());
  std::vector<std::string> names;
  const auto observer = untouched->observeChanges([&](std::string_view name) { names.emplace_back(name); });
  const auto other2 = edited->observeChanges([&](std::string_view name) { names.emplace_back(name); });
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(untouched->attributedString(), bold(u"from there"));
  EXPECT_THAT(names, UnorderedElementsAre("text", "useCount"));
}

// The observer's change is the user's, not part of what others did: it must be saved.
TEST(Refresh, TellsObserversOnlyWhenTheyMayChangeRecordsAndSave) {
  SharedLibrary library;
  const auto snippet = library.snippet(u"a");
  ASSERT_TRUE(library.here.save());
  const auto other = library.other();
  SharedLibrary::in(*other, *snippet)->setUseCount(2);
  ASSERT_TRUE(other->save());

  const auto observer = snippet->observeChanges([&](std::string_view name) {
    if (name != "useCount") return;
    snippet->setTitle(u"used twice");
    EXPECT_TRUE(library.here.hasChanges());
    EXPECT_TRUE(library.here.save());
  });
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(library.stored(), Description::of(library.here));
  EXPECT_EQ(SharedLibrary::in(*library.other(), *snippet)->title(), u"used twice");
}

// The file's reference to the application went with it, and who stored it again did not know of that.
TEST(Refresh, CutsWhatLedToARecordThatWasDeletedAndStoredAgainElsewhere) {
  SharedLibrary library;
  const auto app = library.here.insert<QLApp>();
  const auto folder = library.here.insert<QLCategory>();
  ASSERT_TRUE(library.here.save());
  const auto keeping = library.other("keeping");
  const auto deleting = library.other("deleting");
  folder->addBlockedApp(*app);
  ASSERT_TRUE(library.here.save());

  deleting->deleteObject(*SharedLibrary::in(*deleting, *app));
  ASSERT_TRUE(deleting->save());
  SharedLibrary::in(*keeping, *app)->setType(3);
  ASSERT_TRUE(keeping->save());
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(app->type(), 3);
  EXPECT_TRUE(folder->blockedApps().empty());
  EXPECT_EQ(library.stored(), Description::of(library.here));
}

TEST(Refresh, OfAFolderThatIsGoneLeavesASnippetMovedIntoItWithoutOne) {
  SharedLibrary library;
  const auto folder = library.here.insert<QLCategory>();
  const auto snippet = library.snippet(u"a");
  ASSERT_TRUE(library.here.save());
  const auto other = library.other();
  other->deleteObject(*SharedLibrary::in(*other, *folder));
  ASSERT_TRUE(other->save());
  snippet->setCategory(folder.get());
  ASSERT_TRUE(library.here.save()) << "the row that the snippet refers to is gone";
  ASSERT_TRUE(library.refresh());
  EXPECT_EQ(snippet->category(), nullptr);
  EXPECT_EQ(library.stored(), Description::of(library.here));
}

}  // namespace
}  // namespace quorlo
