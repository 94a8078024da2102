// Records in the file: what is read is what was saved, and a save writes no more than has changed.

#include "shared_library.h"
#include "store/sqlite/sqlite_database.h"
#include "test_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace quorlo {
namespace {

TEST(Records, AreTheSameAfterEachKindOfChangeWhenTheFileIsOpenedAgain) {
  SharedLibrary library;
  const auto folder = library.here.insert<QLCategory>();
  const auto app = library.here.insert<QLApp>();
  const auto user = library.here.insert<QLUser>();
  const auto snippet = library.snippet(u"Gr\u00FC\u00DFe \U0001F600", u";g");
  TextAttributes picture;
  picture.image =
      ImageAttachment{std::make_shared<const std::vector<std::uint8_t>>(3, std::uint8_t{7}), "image/png"};
  const std::function<void()> changes[] = {
      [&] {
        snippet->setCategory(folder.get());
        snippet->addAllowedApp(*app);
        folder->addBlockedApp(*app);
      },
      [&] { snippet->setCategory(nullptr); },
      [&] { folder->removeBlockedApp(*app); },
      [&] { snippet->setPlainText(u"plain\n\U0001F468\u200D\U0001F469 text"); },
      [&] { snippet->setText(AttributedString(u"\uFFFC", picture)); },
      [&] { snippet->setText(bold(u"\uFFFC")); },
      [&] { snippet->setPlainText(u""); },
      [&] { snippet->setAbbreviation(u""); },
      [&] { snippet->setTitleIsCustom(true); },
      [&] { snippet->setFormatted(8); },
      [&] { snippet->moveToTrash(); },
      [&] { snippet->restoreFromTrash(); },
      [&] { snippet->setCategory(folder.get()); },
      [&] { snippet->addBlockedSnippet(*app); },
      [&] { snippet->removeAllowedApp(*app); },
      [&] { snippet->addAllowedApp(*app); },
      [&] { folder->setTitle(u"Folder"); },
      [&] {
        folder->setShortcutValue(Shortcut{49, 0x100000});
      },
      [&] { folder->setShortcutValue(std::nullopt); },
      [&] { folder->setExpansionBehavior(20); },
      [&] { folder->setSort(-3); },
      [&] { folder->setSourceType(20); },
      [&] { folder->addAllowedApp(*app); },
      [&] { folder->addBlockedApp(*app); },
      [&] { app->setBundleID("org.example.Editor"); },
      [&] { app->setType(1); },
      [&] { user->setSavedChars(1'000'000'000'000); },
      [&] { user->setSavedMinutes(0.1); },
      [&] { user->setWordsPerMinute(-5); },
      [&] { library.here.deleteObject(*app); },
      [&] { library.here.deleteObject(*folder); },
      [&] { library.here.deleteObject(*snippet); },
      [&] { library.here.deleteObject(*user); },
  };
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    changes[i]();
    ASSERT_TRUE(library.here.save());
    EXPECT_FALSE(library.here.hasChanges());
    EXPECT_EQ(library.stored(), Description::of(library.here)) << "after change " << i;
  }
  EXPECT_EQ(library.stored(), "");
}

TEST(Records, ShowInTheHistoryWhatASaveDidEachTransactionLaterThanTheLast) {
  TestStore test;
  Date clock(std::chrono::seconds(1000));
  FakeMainQueue queue;
  auto store = std::make_unique<SqliteRecordStore>(test.open().value());
  auto& database = store->database();
  ManagedObjectContext context(queue, {.name = "view_context",
                                       .transactionAuthor = "main_app",
                                       .now = [&] { return clock; },
                                       .store = std::move(store)});
  const auto folder = context.insert<QLCategory>();
  const auto snippet = context.insert<QLSnippet>();
  ASSERT_TRUE(context.save());
  clock -= std::chrono::hours(1);
  snippet->setText(bold(u"x"));
  snippet->setCategory(folder.get());
  ASSERT_TRUE(context.save());
  snippet->addAllowedApp(*context.insert<QLApp>());
  ASSERT_TRUE(context.save());
  context.deleteObject(*snippet);
  ASSERT_TRUE(context.save());
  ASSERT_TRUE(context.save()) << "without changes";

  EXPECT_EQ(
      rows(database, "SELECT timestamp, author, contextName FROM HistoryTransaction ORDER BY number", 3),
      "1000000000|main_app|view_context\n1000000001|main_app|view_context\n"
      "1000000002|main_app|view_context\n1000000003|main_app|view_context\n");
  EXPECT_EQ(rows(database,
                 "SELECT transactionNumber, entity, row, kind, changedProperties FROM HistoryChange "
                 "ORDER BY number",
                 5),
            "1|Category|1|0|\n1|Snippet|1|0|\n"
            "2|Snippet|1|1|modifiedDate,plainText,numberOFImagesString,category,text\n"
            "3|App|1|0|\n3|Snippet|1|1|allowedApps\n"
            "4|Snippet|1|2|\n");
  EXPECT_EQ(rows(database, "SELECT DISTINCT uuid FROM HistoryChange WHERE entity = 'Snippet'", 1),
            snippet->uuid() + "\n");
}

TEST(Records, StayUnsavedAfterAFailureAndAreSavedByTheNextAttempt) {
  SharedLibrary library;
  const auto old = library.snippet(u"old");
  const auto doomed = library.snippet(u"doomed");
  ASSERT_TRUE(library.here.save());
  const auto before = library.stored();
  old->setTitle(u"new");
  const auto fresh = library.snippet(u"fresh");
  library.here.deleteObject(*doomed);
  const auto fail = "CREATE TEMP TRIGGER Fail BEFORE DELETE ON Snippet BEGIN SELECT RAISE(ABORT, 'no'); END";
  ASSERT_TRUE(library.open.database().execute(fail));
  EXPECT_FALSE(library.here.save());
  EXPECT_EQ(library.stored(), before);
  EXPECT_EQ(fresh->rowNumber(), 0);
  EXPECT_EQ(old->changedProperties().front(), &QLSnippet::kTitle);
  ASSERT_TRUE(library.open.database().execute("DROP TRIGGER Fail"));
  ASSERT_TRUE(library.here.save());
  EXPECT_EQ(library.stored(), Description::of(library.here));
}

TEST(Records, HaveTheirRichTextReadWhenItIsUsedAndLetGoAgain) {
  SharedLibrary library;
  const auto snippet = library.snippet(u"a");
  snippet->setText(bold(u"from the file"));
  ASSERT_TRUE(library.here.save());
  const auto context = library.other();
  const auto it = SharedLibrary::in(*context, *snippet);
  EXPECT_EQ(it->plainText(), u"from the file");
  EXPECT_EQ(it->attributedString(), bold(u"from the file"));

  // Changed behind its back, to see when it is read.
  const auto changed = archive(bold(u"changed"));
  auto write = library.open.database().prepare("UPDATE SnippetText SET text = ?");
  ASSERT_TRUE(write.bind(1, std::span<const std::uint8_t>(changed)).run());
  EXPECT_EQ(it->text(), bold(u"from the file"));
  it->setUseCount(1);
  context->releaseRichTexts();
  EXPECT_EQ(it->text(), bold(u"from the file")) << "let go of with unsaved changes";
  ASSERT_TRUE(context->save());
  context->releaseRichTexts();
  EXPECT_EQ(it->text(), bold(u"changed"));
  EXPECT_FALSE(context->hasChanges());
}

TEST(Records, KeepARichTextThatCannotBeReadUntilTheTextIsChanged) {
  TestStore test;
  test.make(
      "INSERT INTO Snippet(uuid, plainText) VALUES('U', 'characters');"
      "INSERT INTO SnippetText(snippet, text) VALUES(1, x'00')");
  OpenLibrary library(test.directory);
  const auto snippet = library.all<QLSnippet>().front();
  const auto stored = [&] { return rows(library.database(), "SELECT hex(text) FROM SnippetText", 1); };
  EXPECT_EQ(snippet->text(), AttributedString(u"characters"));
  EXPECT_EQ(snippet->text(), AttributedString(u"characters"));
  EXPECT_EQ(
      std::ranges::count_if(test.log, [](const auto& line) { return line.starts_with("ERROR: #rT3xtLd"); }),
      1);
  snippet->setTitle(u"title");
  snippet->setText(AttributedString(u"characters"));
  ASSERT_TRUE(library.context().save());
  EXPECT_EQ(stored(), "00\n");
  snippet->setText(AttributedString(u"others"));
  ASSERT_TRUE(library.context().save());
  EXPECT_EQ(stored(), "");
}

}  // namespace
}  // namespace quorlo
