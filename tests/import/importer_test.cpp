#include "import/snippet_importer.h"

#include "import/import_report.h"
#include "import/work_progress.h"
#include "store/exchange/library_document.h"
#include "store/test_library.h"
#include "text/utf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

ImportedSnippet record(std::u16string title, std::u16string abbreviation, AttributedString text,
                       std::optional<std::size_t> folder = std::nullopt) {
  return {std::move(title), std::move(abbreviation), std::move(text), SnippetType::plainText, folder};
}
ImportedSnippet record(std::u16string title, std::u16string abbreviation, std::u16string text,
                       std::optional<std::size_t> folder = std::nullopt) {
  return record(std::move(title), std::move(abbreviation), AttributedString(std::move(text)), folder);
}

ImportData dataOf(std::vector<ImportedSnippet> records, std::vector<std::u16string> folders = {}) {
  return {std::move(records), std::move(folders), {}};
}

AttributedString picture(std::uint8_t byte) {
  TextAttributes attributes;
  attributes.image = {std::make_shared<const std::vector<std::uint8_t>>(3, byte), "image/png"};
  return {u"\uFFFC", attributes};
}

// "title [abbreviation] text @folder" of each snippet in the order in which they came.
std::vector<std::string> describe(const ManagedObjectContext& context) {
  std::vector<std::string> lines;
  for (const auto& each : context.fetch<QLSnippet>({}).value()) {
    auto line = toUtf8(each->title());
    if (!each->abbreviation().empty()) line += " [" + toUtf8(each->abbreviation()) + "]";
    line += " " + toUtf8(each->plainText());
    if (each->category()) line += " @" + toUtf8(each->category()->title());
    lines.push_back(line);
  }
  return lines;
}

struct ImporterTest : testing::Test {
  // One snippet that is live and one in the trash, saved, and a folder.
  ImporterTest() {
    const auto present = library.snippet(u"Present", u"prs");
    present->setPlainText(u"here");
    const auto trashed = library.snippet(u"Trashed", u"gone");
    trashed->setPlainText(u"there");
    trashed->moveToTrash();
    work = library.folder(CategoryType::Folder);
    work->setTitle(u"Work");
    EXPECT_TRUE(context.save().ok());
    library.commits.clear();
  }

  Result<ImportReport> import(ImportData data, ImportOptions options = {}) {
    return importSnippets(data, options, context, progress);
  }

  TestLibrary library;
  ManagedObjectContext& context = library.context;
  std::shared_ptr<QLCategory> work;
  WorkProgress progress;
};

TEST_F(ImporterTest, MakesSnippetsOfRecordsByItsRules) {
  const std::u16string longest(30, u'x');
  const struct {
    ImportedSnippet record;
    std::string snippet;  // empty when none is made
    std::string notice = {};
  } cases[] = {
      {record(u"Title", u"abc", u"one\r\ntwo\rthree"), "Title [abc] one\ntwo\nthree"},
      {record(u" \t", u"", u"\n  First line \nsecond"), "First line \n  First line \nsecond"},
      {record(u"Only a title", u"", u""), "Only a title "},
      {record(u"First", u"", u" First\nsecond"), "First  First\nsecond"},
      {record(u"", u"onlyabb", u""), " [onlyabb] "},
      {record(u"", u"", u" \r\n"), ""},
      {record(u"a", u" trimmed\t", u"a"), "a [trimmed] a"},
      {record(u"b", u"two words", u"b"), "b b", "“two words” contains a space"},
      {record(u"c", u"no\u00A0break", u"c"), "c c", "contains a space"},
      {record(u"d", longest, u"d"), "d [" + toUtf8(longest) + "] d"},
      {record(u"e", longest + u"y", u"e"), "e e", "longer than 30 characters"},
      {record(u"f", u"prs", u"f"), "f f", "“prs” is already in use by “Present”"},
      {record(u"g", u"gone", u"g"), "g [gone] g"},
      {record(u"h", u"abc", u"h"), "h h", "“abc” is already in use by “Title”"},
      {record(u"i", u"ABC", u"i"), "i [ABC] i"},
      {record(u"Present", u"", u"here"), ""},
      {record(u"Present", u"new", u"here"), "", "“new” was skipped with a duplicate"},
      {record(u"Trashed", u"", u"there"), "Trashed there"},
      {record(u"i", u"", u"i"), ""},
      {record(u"p", u"", picture(1)), "p \uFFFC"},
      {record(u"p", u"", picture(2)), "p \uFFFC"},
      {record(u"p", u"", picture(1)), ""},
  };
  ImportData data;
  std::vector<std::string> expected = describe(context);
  std::vector<std::string> notices;
  for (const auto& each : cases) {
    data.snippets.push_back(each.record);
    if (!each.snippet.empty()) expected.push_back(each.snippet);
    if (!each.notice.empty()) notices.push_back(each.notice);
  }
  const auto imported = import(data);
  ASSERT_TRUE(imported);
  const auto& report = imported.value();
  EXPECT_EQ(describe(context), expected);
  EXPECT_EQ(report.addedSnippets, 17U);
  EXPECT_EQ(report.duplicates, 4U);
  EXPECT_EQ(report.emptyRecords, 1U);
  EXPECT_EQ(report.refusedAbbreviations, 5U);
  ASSERT_EQ(report.notices.size(), notices.size());
  for (std::size_t i = 0; i < notices.size(); ++i) {
    EXPECT_THAT(toUtf8(report.notices[i].message), HasSubstr(notices[i]));
  }
  const auto custom = library.controller.snippet(report.imported.front().snippets[0]);
  const auto derived = library.controller.snippet(report.imported.front().snippets[1]);
  const auto repeated = library.controller.snippet(report.imported.front().snippets[3]);
  EXPECT_TRUE(custom->titleIsCustom());
  EXPECT_FALSE(derived->titleIsCustom());
  EXPECT_FALSE(repeated->titleIsCustom());
  EXPECT_EQ(context.liveSnippet(u"abc").value(), custom);
  EXPECT_EQ(library.commits.size(), 1U);
  EXPECT_FALSE(context.hasChanges());

  ASSERT_EQ(
      import(dataOf({record(u"Present", u"", u"here")}), {.skipDuplicates = false}).value().addedSnippets,
      1U);
}

TEST_F(ImporterTest, FilesWhatItImports) {
  const auto data = dataOf({record(u"1", u"", u"one", 0), record(u"2", u"", u"two", 1),
                            record(u"3", u"", u"three"), record(u"4", u"", u"four", 2)},
                           {u"Work", u"Play", u"Play", u"Unused"});
  const struct {
    ImportDestination destination;
    std::vector<std::string> snippets;
    std::size_t newFolders;
    std::string destinationTitle;
  } cases[] = {
      {ImportAsFiled{}, {"1 one @Work", "2 two @Play", "3 three", "4 four @Play"}, 1, ""},
      {ImportIntoFolder{work->uuid()},
       {"1 one @Work", "2 two @Work", "3 three @Work", "4 four @Work"},
       0,
       "Work"},
      {ImportIntoTitled{u"Work"}, {"1 one @Work", "2 two @Work", "3 three @Work", "4 four @Work"}, 0, "Work"},
      {ImportIntoTitled{u"New"}, {"1 one @New", "2 two @New", "3 three @New", "4 four @New"}, 1, "New"},
  };
  const auto before = describe(context);
  for (const auto& each : cases) {
    const auto report = import(data, {.destination = each.destination}).value();
    auto expected = before;
    expected.insert(expected.end(), each.snippets.begin(), each.snippets.end());
    EXPECT_EQ(describe(context), expected);
    EXPECT_EQ(report.addedFolders.size(), each.newFolders);
    const auto destination = library.controller.folder(report.destination());
    EXPECT_EQ(destination ? toUtf8(destination->title()) : "", each.destinationTitle);
    EXPECT_EQ(undoImport(report, context, progress).value().removedFolders, each.newFolders);
    EXPECT_EQ(describe(context), before);
  }
  EXPECT_THAT(import(data, {.destination = ImportIntoFolder{"gone"}}).error().message,
              HasSubstr("Choose another"));
  EXPECT_THAT(import(data, {.destination = ImportIntoTitled{u" "}}).error().message, HasSubstr("no name"));
  EXPECT_TRUE(import({}, {.destination = ImportIntoTitled{u"Unused"}}).value().addedNothing());
  EXPECT_THAT(library.controller.userFoldersByTitle(u"Unused"), IsEmpty());
}

TEST_F(ImporterTest, LeavesNothingBehindWhenItFailsIsCancelledOrIsATrial) {
  const auto data = dataOf({record(u"1", u"", u"one", 0)}, {u"New"});
  const auto before = describe(context);
  const auto isUnchanged = [&] {
    return describe(context) == before && !context.hasChanges() && library.commits.empty() &&
           library.controller.userFoldersByTitle(u"New").empty();
  };

  library.commitResult = Error{"The disk is full: make room."};
  const auto failed = import(data);
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.error().message, "Nothing was imported. The disk is full: make room.");
  EXPECT_TRUE(isUnchanged());
  library.commitResult = {};

  const auto trial = import(data, {.isDryRun = true});
  EXPECT_EQ(summary(trial.value()), u"1 snippet would be added. 1 folder would be added.");
  EXPECT_TRUE(isUnchanged());

  progress.cancel();
  EXPECT_FALSE(import(data));
  EXPECT_TRUE(isUnchanged());
}

TEST_F(ImporterTest, TakesBackWhatNobodyHasTouched) {
  auto data = dataOf({}, {u"New"});
  for (const char16_t* title : {u"untouched", u"edited", u"used", u"trashed", u"moved", u"deleted"}) {
    data.snippets.push_back(record(title, u"", u"x", 0));
  }
  const auto report = import(data).value();
  const auto& uuids = report.imported.front().snippets;
  library.environment.date += std::chrono::minutes(1);
  library.controller.snippet(uuids[1])->setPlainText(u"y");
  library.controller.snippet(uuids[2])->setUseCount(1);
  library.controller.snippet(uuids[3])->moveToTrash();
  library.controller.snippet(uuids[4])->setCategory(work.get());
  context.deleteObject(*library.controller.snippet(uuids[5]));
  library.commits.clear();

  const auto undone = undoImport(report, context, progress).value();
  EXPECT_EQ(undone.removedSnippets, 1U);
  EXPECT_EQ(undone.keptSnippets, 4U);
  EXPECT_EQ(undone.removedFolders, 0U);
  EXPECT_EQ(library.commits.size(), 1U);
  EXPECT_EQ(library.controller.snippet(uuids[0]), nullptr);
  EXPECT_EQ(undoImport(report, context, progress).value().removedSnippets, 0U);
}

TEST_F(ImporterTest, FilesUnderAllSnippetsAtOnceAndDoesNotTakeRepairsForTheUsersDoing) {
  const auto data = dataOf({record(u"loose", u"", u"x"), record(u"moved", u"", u"y")});
  const std::string document = R"({"snippets": [{"text": "from a document", "title": "own"}]})";
  const auto early = import(data).value();  // before the library has its built-in folders
  library.controller.createBuiltInFolders();
  EXPECT_TRUE(library.controller.migrateFolders());
  EXPECT_EQ(undoImport(early, context, progress).value().removedSnippets, 2U);

  const auto report = import(data).value();
  const auto all = library.controller.builtInFolder(CategoryType::AllSnippets);
  const auto& uuids = report.imported.front().snippets;
  EXPECT_EQ(library.controller.snippet(uuids[0])->category(), all);
  library.controller.snippet(uuids[1])->setCategory(work.get());
  EXPECT_EQ(undoImport(report, context, progress).value().keptSnippets, 1U);

  const auto read = readLibrary(document, "document", context);
  EXPECT_EQ(read.value().addedSnippets.front()->category(), all);
}

TEST_F(ImporterTest, ReportsWhateverNamesFilesHave) {
  ImportReport report;
  report.addedSnippets = 2;
  report.duplicates = 1;
  report.refusedAbbreviations = 3;
  report.notices = {{u"Title", u"Something."}, {u"", u"All of it."}};
  report.refusedFiles = {{"x.csv: why \xFF"}};
  report.imported = {{"F", {"A"}}, {"", {"B"}}};
  report.addedFolders = {"F"};
  EXPECT_EQ(
      toUtf8(text(report)),
      "2 snippets were added. 1 folder was added. 1 duplicate was skipped. 3 snippets have no abbreviation "
      "now. 1 file was not imported.\n\nx.csv: why \uFFFD\nTitle: Something.\nAll of it.\n");
  EXPECT_THAT(json(report), HasSubstr(R"("x.csv: why )"));
}

}  // namespace
}  // namespace quorlo
