#include "fakes/temporary_directory.h"
#include "import/csv/csv_file.h"
#include "import/csv/csv_mapping.h"
#include "import/csv/cswiftv.h"
#include "import/export/csv_field.h"
#include "import/export/export_library.h"
#include "import/work_progress.h"
#include "random_library.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <set>

namespace quorlo {
namespace {

using Row = std::vector<std::string>;

// As the reader has them, without the empty row behind the last line feed.
std::vector<Row> rowsOf(std::string_view table) {
  const auto text = toUtf16(table);
  const auto read = CSwiftV::parse(text, u',', CSwiftV::Header::none).value();
  std::vector<Row> rows;
  for (const auto& row : read.rows()) {
    if (row.empty()) continue;
    Row fields;
    for (const auto each : row) fields.push_back(toUtf8(each));
    rows.push_back(std::move(fields));
  }
  return rows;
}

std::string table(std::size_t place, const std::string& field) {
  std::vector<std::string> fields{"b", "c", "d"};
  fields[place] = field;
  return "a,a,a\n" + fields[0] + ',' + fields[1] + ',' + fields[2] + "\ne,\"e\",e\n";
}

std::vector<Row> expected(std::size_t place, const std::string& value) {
  Row row{"b", "c", "d"};
  row[place] = value;
  return {{"a", "a", "a"}, row, {"e", "e", "e"}};
}

// Every text of up to seven of the characters that matter, in every column: what is said to read back does,
// what is not could not, written in either of the two ways that give the value after the outer quotes are
// gone, and nothing disturbs its neighbours.
TEST(CsvField, ReadsBackWhereverTheRulesCanAndNeverDisturbsAnother) {
  constexpr std::string_view kAlphabet = "\",\n\rx";
  std::vector<std::string> values{""};
  for (std::size_t i = 0; values[i].size() < 6 || i + 1 < values.size(); ++i) {
    if (values[i].size() == 6) continue;
    for (const char each : kAlphabet) values.push_back(values[i] + each);
  }
  std::size_t exact = 0;
  for (const auto& value : values) {
    for (const auto place : {CsvPlace::first, CsvPlace::middle, CsvPlace::last}) {
      const auto column = static_cast<std::size_t>(place);
      const auto field = csvField(value, place);
      const auto rows = rowsOf(table(column, field.text));
      exact += field.readsBack;
      if (field.readsBack) {
        ASSERT_EQ(rows, expected(column, value)) << value;
        continue;
      }
      std::string doubled;
      for (const char each : value) doubled.append(each == '"' ? 2 : 1, each);
      ASSERT_EQ(rows, expected(column, doubled)) << value;
      ASSERT_NE(rowsOf(table(column, value)), expected(column, value)) << value;
      ASSERT_NE(rowsOf(table(column, '"' + value + '"')), expected(column, value)) << value;
    }
  }
  EXPECT_GT(exact, values.size());
}

TEST(CsvExport, GivesTheSameSnippetsToTheReaderButThoseItWarnsOf) {
  TemporaryDirectory directory(TemporaryDirectory::quickParent());
  Random random(21);
  std::size_t exact = 0;
  std::size_t others = 0;
  for (int round = 0; round < 1000; ++round) {
    TestLibrary library;
    fillAtRandom(library, random);
    const auto snippets =
        library.context.fetch<QLSnippet>({.predicate = QLSnippet::kDeletionDate.isNil()}).value();
    WorkProgress progress;
    const auto report =
        exportToFile(library.context, WholeLibrary{}, ExportFormat::csv, directory / "a.csv", progress);
    ASSERT_TRUE(report) << report.error().message;
    std::set<std::u16string> warned;
    for (const auto& each : report.value().warnings) warned.insert(each.snippet);

    const auto read = readCsvFile(directory / "a.csv", {}, progress);
    if (snippets.empty()) continue;
    ASSERT_TRUE(read) << read.error().message;
    auto next = read.value().snippets.begin();
    for (const auto& snippet : snippets) {
      const auto& was = *snippet;
      const auto end = read.value().snippets.end();
      if (!was.abbreviation().empty() && (next == end || next->title != was.title())) {
        EXPECT_TRUE(warned.contains(was.title()));  // it has no text
        continue;
      }
      ASSERT_NE(next, end);
      const auto& it = *next++;
      const bool isSame =
          it.title == was.title() && it.abbreviation == was.abbreviation() && it.text == was.text();
      EXPECT_NE(isSame, warned.contains(was.title())) << toUtf8(was.title());
      ++(isSame ? exact : others);
    }
  }
  EXPECT_GT(exact, 200U);
  EXPECT_GT(others, 200U);
}

TEST(CsvExport, SaysOfEachSnippetWhatIsLost) {
  TestLibrary library;
  library.snippet(u"Fine, \"all\" of it")->setPlainText(u"a\n\"b\"\n");
  library.snippet(u"Quotes")->setPlainText(u"5\" and\n");
  library.snippet(u"Formats")->setText(AttributedString(u"bold", {.bold = true}));
  AttributedString picture(u"see ");
  picture.append(u"\uFFFC", {.image = ImageAttachment{nullptr, "image/png"}});
  library.snippet(u"Picture")->setText(picture);
  library.snippet(u"Half")->setPlainText(std::u16string(u"a\0\xD800", 3));
  EXPECT_EQ(exportText(library.context, WholeLibrary{}, ExportFormat::csv).value(),
            "title,abbreviation,text\n"
            "\"Fine, \"all\" of it\",,\"a\n\"b\"\n\"\n"
            "Quotes,,\"5\"\" and\n\"\n"
            "Formats,,bold\n"
            "Picture,,see \n"
            "Half,,a\uFFFD\uFFFD\n");

  TemporaryDirectory directory;
  WorkProgress progress;
  const auto report =
      exportToFile(library.context, WholeLibrary{}, ExportFormat::csv, directory / "a.csv", progress).value();
  const std::vector<ExportWarning> expected{
      {u"Quotes", u"Its quotation marks were doubled, as tables have them; Quorlo reads them back doubled."},
      {u"Formats", u"A table cannot hold its formatting."},
      {u"Picture", u"A table cannot hold its pictures."},
      {u"Half", u"It holds characters that a table cannot hold; they were replaced."},
  };
  EXPECT_EQ(report.warnings, expected);
}

}  // namespace
}  // namespace quorlo
