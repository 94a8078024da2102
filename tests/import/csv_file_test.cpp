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

class CsvFile : public testing::Test {
 protected:
  void write(std::string_view bytes, std::ios::openmode mode = std::ios::trunc) const {
    std::ofstream(file_, std::ios::binary | mode) << bytes;
  }
  Result<ImportData> read(const CsvMapping& mapping = {}) const {
    WorkProgress progress;
    return readCsvFile(file_, mapping, progress);
  }
  // Each snippet as title|abbreviation|text, or the error.
  std::string readAs(std::string_view bytes, const CsvMapping& mapping = {}) const {
    write(bytes);
    const auto data = read(mapping);
    if (!data) return data.error().message;
    std::string records;
    for (const auto& each : data.value().snippets) {
      records += toUtf8(each.title + u"|" + each.abbreviation + u"|" + each.text.string()) + "/";
    }
    return records;
  }

  TemporaryDirectory directory_;
  std::filesystem::path file_ = directory_ / "table.csv";
};

TEST(TextDecoding, FollowsTheByteOrderMarkOrTheBytes) {
  struct Case {
    std::string bytes;
    std::u16string text;  // empty for an error
    TextEncoding encoding = TextEncoding::utf8;
    std::string error = {};
  };
  using enum TextEncoding;
  const Case cases[] = {
      {"", u""},
      {"Grüße 😀\n", u"Grüße 😀\n"},
      {"\xEF\xBB\xBFü\n", u"ü\n"},
      {"\xFF\xFE\xFC\0\n\0"s, u"ü\n", utf16LittleEndian},
      {"\xFE\xFF\0\xFC\0\n"s, u"ü\n", utf16BigEndian},
      {"Gr\xFC\xDF"
       "e \x80\n",
       u"Grüße €\n", windows1252},
      {"ok \xE2\x82", u"ok â‚", windows1252},
      {"\xED\xA0\x80", u"í\xA0€", windows1252},
      {"a\rb\r", u"a\nb\n"},
      {"a\rb\n", u"a\rb\n"},
      {"\xEF\xBB\xBF"
       "a\nb\xFC\n",
       u"", utf8, "line 2 is damaged"},
      {"\xFF\xFE"
       "a\0\n\0\0\xD8"s,
       u"", utf8, "line 2 is damaged"},
      {"\xFE\xFF\0a\0"s, u"", utf8, "line 1 is damaged"},
      {"a\nb\0c"s, u"", utf8, "line 2 holds a NUL character"},
      {"\xFC\0"s, u"", utf8, "line 1 holds a NUL character"},
      {"\xFF\xFE\0\0a\0\0\0"s, u"", utf8, "line 1 holds a NUL character"},
  };
  for (const auto& each : cases) {
    WorkProgress progress;
    const auto decoded = decodeText(each.bytes, progress);
    if (!each.error.empty()) {
      ASSERT_FALSE(decoded) << each.error;
      EXPECT_THAT(decoded.error().message, HasSubstr(each.error));
    } else {
      ASSERT_TRUE(decoded) << each.bytes;
      EXPECT_EQ(decoded.value().text, each.text);
      EXPECT_EQ(decoded.value().encoding, each.encoding);
    }
  }
}

TEST(LikeliestSeparator, IsTheCommaUnlessAnotherClearlySplitsBetter) {
  const std::pair<std::u16string, char16_t> cases[] = {
      {u"", u','},
      {u"word\nword\n", u','},
      {u"a,b\n1;2,3\n", u','},
      {u"a;b;c\n1,5;2;3\nx;y;z\n", u';'},
      {u"a\tb\nHello, you\tx; y\n", u'\t'},
      {u"a|b|c\n\"x,\n|\"|y|z\n\n", u'|'},
      {u"a;b\n1;2;3\n4\n", u','},
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
  write(
      "a,b\nx,y\nGr\xFC\xDF"
      "e,\"open\nz,z\n");
  const auto data = read();
  ASSERT_TRUE(data);
  ASSERT_EQ(data.value().notices.size(), 2U);
  EXPECT_THAT(toUtf8(data.value().notices[0].message), HasSubstr("table.csv is not in UTF-8"));
  EXPECT_THAT(toUtf8(data.value().notices[1].message), HasSubstr("begins in line 3 is never closed"));
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

TEST_F(CsvFile, StopsWhenItIsCancelled) {
  write("a,b\n1,2\n");
  WorkProgress progress;
  progress.cancel();
  const auto data = readCsvFile(file_, {}, progress);
  ASSERT_FALSE(data);
  EXPECT_EQ(data.error().message, "The import was cancelled.");
}

}  // namespace
}  // namespace quorlo
