#include "app/shell/menu/snippet_search.h"

#include "store/test_library.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace quorlo {
namespace {

struct SnippetSearchTest : testing::Test, TestLibrary {
  std::vector<std::u16string> found(const SnippetSearch& search) {
    std::vector<std::u16string> titles;
    for (const auto& each : findSnippets(context, search)) titles.push_back(each->title());
    return titles;
  }

  std::shared_ptr<QLSnippet> snippetIn(const std::shared_ptr<QLCategory>& folder, std::u16string title) {
    const auto added = snippet(std::move(title));
    added->setCategory(folder.get());
    return added;
  }
};

using Titles = std::vector<std::u16string>;

TEST_F(SnippetSearchTest, LooksCaselesslyInTheScopesOfTheSettings) {
  snippet(u"Greeting", u";hi")->setPlainText(u"Dear friend");
  snippet(u"Dear all", u"x")->setPlainText(u"Straße");
  snippet(u"Third", u"DEAR")->setPlainText(u"y");

  struct Case {
    std::u16string text;
    SearchScopes scopes;
    Titles found;
  };
  const Case cases[] = {
      {u"dear", SearchScopes::all(), {u"Greeting", u"Dear all", u"Third"}},
      {u"dear", kTitleScope, {u"Dear all"}},
      {u"dear", kAbbreviationScope, {u"Third"}},
      {u"dear", kTextScope, {u"Greeting"}},
      {u"dear", kTitleScope | kTextScope, {u"Greeting", u"Dear all"}},
      {u"STRASSE", SearchScopes::all(), {u"Dear all"}},
      {u"nowhere", SearchScopes::all(), {}},
      {u"nowhere", SearchScopes(0), {u"Greeting", u"Dear all", u"Third"}},
      {u"", SearchScopes::all(), {u"Greeting", u"Dear all", u"Third"}},
  };
  for (const auto& each : cases) EXPECT_EQ(found({each.text, each.scopes, nullptr, {}}), each.found);
}

TEST_F(SnippetSearchTest, StatesItsConditionAsDocumentedAndLogsAnUnknownScope) {
  const auto userFolder = folder(CategoryType::Folder);
  const std::string live = "(deletionDate == nil AND (category == nil OR category.sourceType != 20))";
  EXPECT_EQ(searchPredicate({}).text(), live);
  EXPECT_EQ(searchPredicate({u"a", kTextScope | kTitleScope, nullptr, {}}).text(),
            live + " AND (title CONTAINS[c] %@ OR plainText CONTAINS[c] %@)");
  EXPECT_EQ(searchPredicate({u"", SearchScopes::all(), userFolder, {}}).text(),
            "category == %@ AND deletionDate == nil");
  EXPECT_TRUE(log.empty());

  EXPECT_EQ(searchPredicate({u"a", SearchScopes(8), nullptr, {}}).text(), live);
  EXPECT_EQ(log, std::vector<std::string>{"ERROR: #rhjgkj - <SearchScopes: name = n/a>"});
}

TEST_F(SnippetSearchTest, NeverListsTheTrashOrSharedFolders) {
  const auto work = folder(CategoryType::Folder);
  const auto shared = folder(CategoryType::SharedFolder, SourceType::Public);
  const auto smart = folder(CategoryType::Code, SourceType::General);
  snippetIn(work, u"kept")->setFormatted(static_cast<std::int64_t>(SnippetType::code));
  snippetIn(work, u"trashed")->setDeletionDate(environment.now());
  snippetIn(shared, u"shared");

  EXPECT_EQ(found({}), Titles{u"kept"});
  EXPECT_EQ(found({u"e", SearchScopes::all(), nullptr, {}}), Titles{u"kept"});
  EXPECT_EQ(found({u"", SearchScopes::all(), work, {}}), Titles{u"kept"});
  EXPECT_EQ(found({u"", SearchScopes::all(), shared, {}}), Titles{u"shared"});
  EXPECT_EQ(found({u"", SearchScopes::all(), smart, {}}), Titles{u"kept"});
}

TEST_F(SnippetSearchTest, ListsFortySnippetsInTheGivenOrder) {
  for (int i = 0; i < 41; ++i) snippet(u"s")->setUseCount(i);
  for (const bool ascending : {true, false}) {
    const auto snippets =
        findSnippets(context, {u"s", SearchScopes::all(), nullptr, {{&QLSnippet::kUseCount, ascending}}});
    ASSERT_EQ(snippets.size(), 40u);
    EXPECT_EQ(snippets.front()->useCount(), ascending ? 0 : 40);
    EXPECT_EQ(snippets.back()->useCount(), ascending ? 39 : 1);
  }
}

TEST_F(SnippetSearchTest, FindsWhatHasChangedSinceTheSearchBefore) {
  const auto kept = snippet(u"needle");
  const auto renamed = snippet(u"needle");
  const auto deleted = snippet(u"needle");
  const SnippetSearch search{u"NEEDLE", SearchScopes::all(), nullptr, {}};
  EXPECT_EQ(found(search).size(), 3u);

  renamed->setTitle(u"thread");
  context.deleteObject(*deleted);
  snippet(u"other")->setAbbreviation(u"needles");
  EXPECT_EQ(found(search), (Titles{u"needle", u"other"}));

  // So often that the texts of before take most of the space.
  for (int i = 0; i < 100; ++i) {
    kept->setPlainText(std::u16string(100, u'x'));
    EXPECT_EQ(found({u"thread", SearchScopes::all(), nullptr, {}}), Titles{u"thread"});
    kept->setPlainText(u"needle in hay");
    EXPECT_EQ(found({u"needle in hay", SearchScopes::all(), nullptr, {}}), Titles{u"needle"});
  }
}

TEST_F(SnippetSearchTest, GroupsByTheTitleOfTheFolder) {
  const auto letters = folder(CategoryType::Folder);
  const auto lettersToo = folder(CategoryType::Folder);
  letters->setTitle(u"Letters");
  lettersToo->setTitle(u"Letters");
  snippetIn(letters, u"1");
  snippet(u"2");
  snippetIn(lettersToo, u"3");

  Titles rows;
  for (const auto& group : groupByFolder(findSnippets(context, {}))) {
    rows.push_back(u"[" + group.title + u"]");
    for (const auto& each : group.snippets) rows.push_back(each.title);
  }
  EXPECT_EQ(rows, (Titles{u"[Letters]", u"1", u"3", u"[All Snippets]", u"2"}));
}

TEST_F(SnippetSearchTest, CutsLongTitlesBetweenUserPerceivedCharacters) {
  const std::u16string flag = u"🇩🇪";  // two code points, one character
  std::u16string flags;
  for (int i = 0; i < 26; ++i) flags += flag;
  const std::pair<std::u16string, std::u16string> cases[] = {
      {std::u16string(25, u'a'), std::u16string(25, u'a')},
      {std::u16string(26, u'a'), std::u16string(26, u'a') + u"…"},
      {std::u16string(27, u'a'), std::u16string(26, u'a') + u"…"},
      {flags + flag, flags + u"…"},
      {u"", u"Untitled"},
  };
  for (const auto& [title, shown] : cases) {
    EXPECT_EQ(groupByFolder({snippet(title)}).front().snippets.front().title, shown);
  }
}

}  // namespace
}  // namespace quorlo
