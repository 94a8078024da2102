#include "store/context/predicate.h"

#include "store/lookup/snippet_predicates.h"
#include "test_library.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(Predicate, PrintsTheDocumentedTextWithoutWhatTheUserWrote) {
  TestLibrary library;
  const auto folder = library.folder(CategoryType::Folder);
  EXPECT_EQ(
      liveAbbreviation(u"secret").text(),
      "(abbreviation == %@) AND (deletionDate == nil AND (category == nil OR category.sourceType != 20))");
  EXPECT_EQ(folder->predicate().text(), "category == %@ AND deletionDate == nil");
  EXPECT_EQ(QLSnippet::kPlainText.contains(u"secret").text(), "plainText CONTAINS[c] %@");
  EXPECT_EQ(QLSnippet::kDeletionDate.atMost(Date{}).text(), "deletionDate <= %@");
  EXPECT_EQ(Predicate::always(false).text(), "FALSEPREDICATE");
}

TEST(Predicate, TakesAMissingFolderForOneOfAnotherTypeAndEveryOtherComparisonWithNilForFalse) {
  QLSnippet snippet;
  const Date date(std::chrono::seconds(5));
  EXPECT_TRUE(QLSnippet::kCategoryType.differsFrom(100).evaluate(snippet));
  EXPECT_FALSE(QLSnippet::kCategoryType.equals(100).evaluate(snippet));
  EXPECT_FALSE(QLSnippet::kAbbreviation.contains(u"").evaluate(snippet));
  EXPECT_FALSE(QLSnippet::kDeletionDate.atMost(date).evaluate(snippet));
  EXPECT_FALSE(QLSnippet::kDeletionDate.atLeast(date).evaluate(snippet));
}

TEST(Predicate, ComparesAtTheBoundaryAsItSaysAndTextsExactly) {
  QLSnippet snippet;
  snippet.setUseCount(3);
  snippet.setAbbreviation(u"Sig");
  snippet.setPlainText(u"Straße");
  const auto& count = QLSnippet::kUseCount;
  for (const auto& each :
       {count.equals(3), count.atMost(3), count.atLeast(3), QLSnippet::kAbbreviation.equals(u"Sig"),
        QLSnippet::kPlainText.contains(u"STRASSE")}) {
    EXPECT_TRUE(each.evaluate(snippet)) << each.text();
  }
  for (const auto& each : {count.lessThan(3), count.greaterThan(3), count.differsFrom(3),
                           QLSnippet::kAbbreviation.equals(u"sig"), QLSnippet::kPlainText.contains(u"")}) {
    EXPECT_FALSE(each.evaluate(snippet)) << each.text();
  }
}

TEST(Predicate, KeepsTheFolderThatItComparesWith) {
  TestLibrary library;
  auto folder = library.folder(CategoryType::Folder);
  const auto snippet = library.snippet(u"a");
  snippet->setCategory(folder.get());
  const auto predicate = folder->predicate();
  EXPECT_TRUE(predicate.evaluate(*snippet));
  library.context.deleteObject(*folder);
  folder.reset();
  EXPECT_FALSE(predicate.evaluate(*snippet));
}

TEST(Fetch, RefusesPropertiesThatTheRecordsDoNotHave) {
  TestLibrary library;
  const auto nested =
      Predicate::all({QLSnippet::kTitle.equals(u"a"), QLApp::kType.equals(0).inParentheses()});
  const auto refused = library.context.fetch<QLSnippet>({.predicate = nested});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().message, "Snippet records have no property type of App records");
  EXPECT_FALSE(library.context.fetch<QLApp>({.sortDescriptors = {{&QLSnippet::kTitle}}}));
}

TEST(Fetch, SortsByEachDescriptorInTurnNilFirstAndTiesInTheOrderOfInsertion) {
  TestLibrary library;
  library.snippet(u"b", u"2")->setUseCount(1);
  library.snippet(u"a", u"2")->setUseCount(1);
  library.snippet(u"c")->setUseCount(2);
  library.snippet(u"d", u"1")->setUseCount(2);
  using Titles = std::vector<std::u16string>;
  EXPECT_EQ(library.titles({.sortDescriptors = {{&QLSnippet::kAbbreviation}}}),
            (Titles{u"c", u"d", u"b", u"a"}));
  EXPECT_EQ(library.titles({.sortDescriptors = {{&QLSnippet::kUseCount, false}, {&QLSnippet::kTitle}}}),
            (Titles{u"c", u"d", u"a", u"b"}));
  EXPECT_EQ(library.titles({.predicate = QLSnippet::kUseCount.equals(2), .fetchLimit = 1}), Titles{u"c"});
}

}  // namespace
}  // namespace quorlo
