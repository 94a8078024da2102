#include "import/csv/csv_file.h"

#include "fakes/temporary_directory.h"
#include "import/csv/csv_mapping.h"
#include "import/csv/separators.h"
#include "import/work_progress.h"
#include "text/utf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>
#include <string>
#include <thread>

namespace quorlo {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::StartsWith;

class CsvFile : public testing::Test {
 protected:
  void write(std::string_view bytes, std::ios::openmode mode = std::ios::trunc) const {
    std::ofstream(file_, std::ios::binary | mode) << bytes;
  }
  Result<ImportData> read(const CsvMapping& mapping = {}) const {
    WorkProgress progress;
    return readCsvFile(file_, mapping, progress);
  }
  // Each snippet as title|abbreviation|text and the notices, or the error.|abbreviation|text, or the error.
  std::string readAs(std::string_view bytes, const CsvMapping& mapping = {}) const {
    write(bytes);
    const auto data = read(mapping);
    if (!data) return data.error().message;
    std::string records;
    for (const auto& each : data.value().snippets) {
      records += toUtf8(each.title + u"|" + each.abbreviation + u"|" + each.text.string()) + "/";
    }
    for (const auto& each : data.value().notices) records += toUtf8(each.message);
    return records;
  }

  TemporaryDirectory directory_;
  std::filesystem::path file_ = directory_ / "table.csv";
};

// The encoding and the text, or the error.
std::string decode(std::string_view bytes) {
  constexpr std::string_view kNames[] = {"UTF-8 ", "UTF-16LE ", "UTF-16BE ", "Windows "};
  WorkProgress progress;
  const auto decoded = decodeText(bytes, progress);
  if (!decoded) return decoded.error().message;
  return std::string(kNames[static_cast<int>(decoded.value().encoding)]) + toUtf8(decoded.value().text);
}

TEST(TextDecoding, FollowsTheByteOrderMarkOrTheBytes) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "UTF-8 "},
      {"Grüße 😀\n", "UTF-8 Grüße 😀\n"},
      {"\357\273\277ü\n", "UTF-8 ü\n"},
      {"\377\376\374\0\n\0"s, "UTF-16LE ü\n"},
      {"\376\377\0\374\0\n"s, "UTF-16BE ü\n"},
      {"Gr\374\337e \200\n", "Windows Grüße €\n"},
      {"cut \342\202", "Windows cut â‚"},
      {"surrogate \355\240\200", "Windows surrogate í\u00A0€"},
      {"a\rb\r", "UTF-8 a\nb\n"},
      {"a\rb\n", "UTF-8 a\rb\n"},
      {"\357\273\277a\nb\374\n", "line 2 is damaged"},
      {"\377\376a\0\n\0\0\330"s, "line 2 is damaged"},
      {"\376\377\0a\0"s, "line 1 is damaged"},
      {"a\nb\0c"s, "line 2 holds a NUL character"},
      {"\374\0"s, "line 1 holds a NUL character"},
      {"\377\376\0\0a\0\0\0"s, "line 1 holds a NUL character"},
  };
  for (const auto& [bytes, outcome] : cases) EXPECT_THAT(decode(bytes), StartsWith(outcome));
}

TEST(LikeliestSeparator, IsTheCommaUnlessAnotherClearlySplitsBetter) {
  const std::pair<std::u16string, char16_t> cases[] = {
      {u"", u','},
      {u"word\nword\n", u','},
      {u"a,b\n1;2,3\n", u','},
      {u"a;b;c\n1,5;2;3\nx;y;z\n", u';'},
      {u"a\tb\nHello, you\tx; y\n", u'\t'},
      {u"a|b|c\n\"x,\n|\"|y|z\n\n", u'|'},
      {u"a;b\n1;2\n1;2\nx\n", u','},
      {u"a;b\n" + std::u16string(1 << 19, u'x'), u';'},
  };
  for (const auto& [text, separator] : cases) EXPECT_EQ(likeliestSeparator(text), separator) << toUtf8(text);
}

TEST(GuessedColumns, GoByNameThenByPosition) {
  using Headers = std::vector<std::u16string>;
  const std::pair<Headers, CsvColumns> cases[] = {
      {{}, {}},
      {{u"x"}, {{}, {}, 0}},
      {{u"x", u"y"}, {{}, 0, 1}},
      {{u"Column 1", u"Column 2", u"Column 3", u"Column 4"}, {0, 1, 2}},
      {{u"Plain Text", u"SHORTCUT", u"Name"}, {2, 1, 0}},
      {{u"Titel", u"Tastenkürzel", u"Textbaustein"}, {0, 1, 2}},
      {{u"id", u"snippet name", u"snippet text"}, {1, {}, 2}},
      {{u"Abkürzung", u"Wert"}, {{}, 0, 1}},
      {{u"title", u"text", u"text"}, {0, {}, 1}},
  };
  for (const auto& [headers, columns] : cases) {
    EXPECT_EQ(guessColumns(headers), columns) << (headers.empty() ? "" : toUtf8(headers[0]));
  }
}

TEST_F(CsvFile, MakesASnippetOfEachRowThatHoldsAnything) {
  const std::string table =
      "text,abbreviation,title\nHi,h,T\n\n,,\n,,U\n\"1,\r\n2\",\r\nx\"\"y,\"\"\"\",z,more\n";
  EXPECT_EQ(readAs(table), "T|h|Hi/U||/||1,\r\n2/z|\"\"|x\"\"y/");
  EXPECT_EQ(readAs("a,b\nc,d", {u',', false, CsvColumns{1, {}, 0}}), "b||a/d||c/");
  EXPECT_EQ(readAs("a;b\n1;2\n"), "|1|2/");
  EXPECT_EQ(readAs("a;b\n1;2\n", {u',', true, CsvColumns{{}, {}, 0}}), "||1;2/");
  EXPECT_EQ(readAs(""), "");
  EXPECT_EQ(readAs("a,b\n"), "");
  EXPECT_THAT(readAs("a\nb,c\n", {u',', true, CsvColumns{{}, {}, 2}}),
              HasSubstr("table.csv cannot be read: there is no column 3; the table has 2."));
}

TEST_F(CsvFile, TellsWhatTheUserShouldLookAt) {
  const auto outcome = readAs("a,b\nx,y\nGr\374\337e,\"open\nz,z\n");
  EXPECT_THAT(outcome, HasSubstr("table.csv is not in UTF-8 and was read as Windows-1252"));
  EXPECT_THAT(outcome, HasSubstr("begins in line 3 is never closed"));
}

TEST_F(CsvFile, RefusesWhatIsNoFileOrTooLarge) {
  const auto error = [&] { return read().error().message; };
  EXPECT_THAT(error(), HasSubstr("table.csv cannot be read: No such file or directory."));
  write("");
  std::filesystem::resize_file(file_, (std::uintmax_t{256} << 20) + 1);
  EXPECT_THAT(error(), HasSubstr("larger than 256 MiB"));
  file_ = directory_.path();
  EXPECT_THAT(error(), HasSubstr("it is a folder"));
  file_ = directory_ / "pipe";
  ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
  EXPECT_THAT(error(), HasSubstr("a pipe"));
}

TEST_F(CsvFile, RefusesAFileThatChangesMeanwhile) {
  write("");
  std::filesystem::resize_file(file_, 32 << 20);
  std::jthread writer([&](const std::stop_token& stop) {
    while (!stop.stop_requested()) write("x", std::ios::app);
  });
  std::string message;
  for (int i = 0; i < 100 && message.find("is changing it") == message.npos; ++i) {
    message = read().ok() ? "" : read().error().message;
  }
  EXPECT_THAT(message, HasSubstr("another program is changing it"));
}

}  // namespace
}  // namespace quorlo
