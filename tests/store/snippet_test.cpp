#include "test_library.h"

#include "store/records/snippet_image.h"
#include "store/use_recorder.h"

#include <gtest/gtest.h>

#include <regex>

namespace quorlo {
namespace {

TextAttributes bold() {
  TextAttributes attributes;
  attributes.bold = true;
  return attributes;
}

AttributedString picture(std::uint8_t byte) {
  TextAttributes attributes;
  attributes.image = {std::make_shared<const std::vector<std::uint8_t>>(1, byte), "image/png"};
  return {u"\uFFFC", attributes};
}

TEST(Snippet, GetsIdentityAndCreationDateOnInsertionInTheMainContextUnlessItHasThem) {
  TestLibrary library;
  const auto fresh = library.snippet(u"fresh");
  EXPECT_TRUE(std::regex_match(
      fresh->uuid(), std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
      << fresh->uuid();
  EXPECT_EQ(fresh->creationDate(), library.environment.date);

  const auto given = std::make_shared<QLSnippet>();
  given->setUuid("from a file");
  given->setCreationDate(Date{});
  library.context.insert(given);
  EXPECT_EQ(given->uuid(), "from a file");
  EXPECT_EQ(given->creationDate(), Date{});

  ManagedObjectContext background({.now = [] { return Date{}; }});
  EXPECT_EQ(background.insert<QLSnippet>()->uuid(), "");
}

TEST(Snippet, HasAnEmptyUuidReplacedWhenItIsFetchedAndNoOther) {
  TestLibrary library;
  const auto damaged = library.snippet(u"damaged", u"dmg");
  const auto intact = library.snippet(u"intact");
  const auto uuid = intact->uuid();
  damaged->setUuid("");
  EXPECT_EQ(library.context.liveSnippet(u"dmg").value(), damaged);
  EXPECT_EQ(damaged->uuid().size(), 36U);
  damaged->setUuid("");
  EXPECT_EQ(library.titles({}).size(), 2U);
  EXPECT_EQ(damaged->uuid().size(), 36U);
  EXPECT_EQ(intact->uuid(), uuid);
}

TEST(Snippet, ChangesNothingWhenASetterIsGivenTheValueThatIsThere) {
  TestLibrary library;
  const auto folder = library.folder(CategoryType::Folder);
  const auto app = library.app("org.example.Editor");
  const auto snippet = library.snippet(u"title", u"abbr");
  const auto setAll = [&] {
    snippet->setTitle(u"title");
    snippet->setAbbreviation(u"abbr");
    auto rich = AttributedString(u"plain ");
    rich.append(u"bold", bold());
    snippet->setText(rich);
    snippet->setPlainText(u"plain bold");
    snippet->setFormatted(1);
    snippet->setCategory(folder.get());
    snippet->addAllowedApp(*app);
    snippet->removeBlockedSnippet(*app);
  };
  setAll();
  ASSERT_TRUE(library.context.save());
  library.environment.date += std::chrono::hours(1);
  const auto modified = snippet->modifiedDate();
  setAll();
  EXPECT_FALSE(library.context.hasChanges());
  EXPECT_EQ(snippet->modifiedDate(), modified);
  EXPECT_FALSE(snippet->text().isPlain());
}

TEST(Snippet, IsModifiedByChangesOfItsContentOnly) {
  TestLibrary library;
  const auto snippet = library.snippet(u"a");
  const auto isModifiedBy = [&](const std::function<void()>& change) {
    library.environment.date += std::chrono::seconds(1);
    change();
    return snippet->modifiedDate() == library.environment.date;
  };
  EXPECT_TRUE(isModifiedBy([&] { snippet->setTitle(u"b"); }));
  EXPECT_TRUE(isModifiedBy([&] { snippet->setPlainText(u"b"); }));
  EXPECT_TRUE(isModifiedBy([&] { snippet->setText(AttributedString(u"b", bold())); }));
  EXPECT_TRUE(isModifiedBy([&] { snippet->setFormatted(8); }));
  EXPECT_FALSE(isModifiedBy([&] { snippet->setUseCount(7); }));
  EXPECT_FALSE(isModifiedBy([&] { snippet->moveToTrash(); }));
}

TEST(Snippet, KeepsPlainTextPicturesAndWhatFollowsFromTheTextInStep) {
  QLSnippet snippet;
  auto text = AttributedString(u"e\u0301 ", bold());
  text.append(picture(1));
  snippet.setText(text);
  EXPECT_EQ(snippet.plainText(), u"e\u0301 \uFFFC");
  EXPECT_EQ(snippet.numberOfCharacters(), 3U);  // as a reader counts
  EXPECT_EQ(snippet.attributedStringWithoutAttachments().string(), u"e\u0301 ");

  snippet.setPlainText(u"plain");
  EXPECT_TRUE(snippet.text().isPlain());
  EXPECT_EQ(snippet.numberOFImagesString(), u"0 images");
}

TEST(Snippet, KeepsItsImageObjectsUntilAnUpdateIsAskedFor) {
  TestLibrary library;
  const auto snippet = library.snippet(u"a");
  snippet->setText(picture(1));
  const auto before = snippet->images();
  ASSERT_EQ(before.size(), 1U);

  snippet->setText(picture(2));
  EXPECT_EQ(snippet->images(), before);
  snippet->updateImagesAfterNextTextChange();
  snippet->setText(picture(3));
  ASSERT_EQ(snippet->images().size(), 1U);
  EXPECT_EQ(snippet->images()[0]->imageData()->front(), 3);
}

TEST(Snippet, LeavesOutTheMacrosThatItIsTold) {
  FakeMainQueue queue;
  ManagedObjectContext context(queue, {.now = [] { return Date{}; },
                                       .findMacroStrings =
                                           [](std::u16string_view) {
                                             return std::vector<std::u16string>{u"%b%", u"%a%", u"%b%"};
                                           }});
  const auto snippet = context.insert<QLSnippet>();
  snippet->setPlainText(u"%a% 1 %b%2%a%%b% %b%");
  EXPECT_EQ(snippet->macroStrings().size(), 3U);
  EXPECT_EQ(snippet->plainTextWithoutMacros(), u"%a% 1 2 %b%");
}

TEST(Snippet, IsGivenTheFirstLineOfItsTextAsTitleAMomentAfterInsertion) {
  TestLibrary library;
  const auto untitled = library.context.insert<QLSnippet>();
  untitled->setPlainText(u"\n  Dear Sir \nor Madam");
  const auto titled = library.snippet(u"mine");
  titled->setPlainText(u"text");
  const auto empty = library.context.insert<QLSnippet>();
  const auto deleted = library.context.insert<QLSnippet>();
  library.context.deleteObject(*deleted);
  library.queue.advance(Seconds(0.19));
  EXPECT_EQ(untitled->displayTitle(), u"Untitled");
  library.queue.advance(Seconds(0.02));
  EXPECT_EQ(untitled->title(), u"Dear Sir");
  EXPECT_FALSE(untitled->titleIsCustom());
  EXPECT_EQ(titled->title(), u"mine");
  EXPECT_EQ(empty->displayTitle(), u"Untitled");
}

TEST(UseRecorder, CountsTheUseAndWhatItSaved) {
  TestLibrary library;
  const auto snippet = library.snippet(u"a");
  recordUse(library.controller, *snippet, 203, 3);
  recordUse(library.controller, *snippet, 2, 5);
  const auto user = library.controller.currentUser();
  EXPECT_EQ(snippet->useCount(), 2);
  EXPECT_EQ(user->savedChars(), 200);
  EXPECT_DOUBLE_EQ(user->savedMinutes(), 1.0);

  user->setWordsPerMinute(0);
  recordUse(library.controller, *snippet, 100, 0);
  EXPECT_DOUBLE_EQ(user->savedMinutes(), 1.0);
}

TEST(User, TellsWhatWasSaved) {
  QLUser user;
  EXPECT_EQ(user.statisticsText(), u"You haven't used any of your snippets yet.");
  user.setSavedMinutes(0.5);
  EXPECT_EQ(user.statisticsText(), u"You have saved 30 seconds of typing with Quorlo.");
  user.setSavedMinutes(61.9);
  EXPECT_EQ(user.sharedStatisticsText(), u"I have saved 1 hour 1 minute of typing with Quorlo.");
}

}  // namespace
}  // namespace quorlo
