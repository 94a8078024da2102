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
  // A line each, without the name of the file.
  std::string noticesOf(std::string_view bytes, const CsvMapping& mapping = {}) const {
    write(bytes);
    const auto data = read(mapping);
    if (!data) return data.error().message;
    std::string notices;
    for (const auto& each : data.value().notices) {
      auto message = toUtf8(each.message);
      if (message.starts_with("table.csv: ")) message.erase(0, std::string_view("table.csv: ").size());
      notices += message + "\n";
    }
    return notices;
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

TEST(GuessedColumns, GoByNameInManyLanguagesThenByPosition) {
  using Headers = std::vector<std::u16string>;
  using enum CsvDoubt;
  const std::pair<Headers, CsvGuess> cases[] = {
      {{}, {}},
      {{u"x"}, {{{}, {}, 0}}},
      {{u"Context", u"Reply"}, {{{}, 0, 1}}},
      {{u"x", u"y", u"z", u"context"}, {{0, 1, 2}, tooMany}},
      {{u"plainText", u"SHORTCUT", u"Name"}, {{2, 1, 0}}},
      {{u"Titel", u"Tastenkürzel", u"Textbaustein"}, {{0, 1, 2}}},
      {{u"Título", u"Abreviatura", u"Texto"}, {{0, 1, 2}}},
      {{u"Texte", u"Raccourci", u"Nom"}, {{2, 1, 0}}},
      {{u"Titolo", u"Abbreviazione", u"Testo"}, {{0, 1, 2}}},
      {{u"Conteúdo", u"ABREVIAÇÃO", u"nome"}, {{2, 1, 0}}},
      {{u"naam", u"afkorting", u"tekst"}, {{0, 1, 2}}},
      {{u"Tytuł", u"Skrót", u"Treść"}, {{0, 1, 2}}},
      {{u"snippet name", u"snippet_text"}, {{0, {}, 1}}},
      {{u"Abkürzung", u"Wert"}, {{{}, 0, 1}}},
      {{u"abbreviation", u"text", u"notes"}, {{{}, 0, 1}}},
      {{u"title", u"text", u"text"}, {{0, {}, 1}, columns}},
      {{u"text", u"Código"}, {{{}, {}, 0}, columns}},
      {{u"name", u"x", u"y"}, {{0, {}, 2}, columns}},
      {{u"abbreviation", u"text", u"", u""}, {{{}, 0, 1}}},
  };
  for (const auto& [headers, guess] : cases) {
    EXPECT_EQ(guessColumns(headers), guess) << (headers.empty() ? "" : toUtf8(headers[0]));
  }
}

TEST_F(CsvFile, MakesASnippetOfEachRowThatHoldsAnything) {
  const std::string table =
      "text,abbreviation,title\nHi,h,T\n\n,,\n,,U\n\"1,\r\n2\",\r\nx\"\"y,\"\"\"\",z,more\n";
  EXPECT_EQ(readAs(table), "T|h|Hi/U||/||1,\r\n2/z|\"\"|x\"\"y/");
  EXPECT_EQ(readAs("a,b\nc,d", {u',', false, CsvColumns{1, {}, 0}}), "b||a/d||c/");
  EXPECT_EQ(readAs("abbr;text\n1;2\n"), "|1|2/");
  EXPECT_EQ(readAs("a;b\n1;2\n", {u',', true, CsvColumns{{}, {}, 0}}), "||1;2/");
  EXPECT_EQ(readAs(""), "");
  EXPECT_EQ(readAs("title,text\n"), "");
  EXPECT_THAT(readAs("a\nb,c\n", {u',', true, CsvColumns{{}, {}, 2}}),
              HasSubstr("table.csv cannot be read: there is no column 3; the table has 2."));
}

TEST_F(CsvFile, TakesAFirstRowForNamesOnlyWhereItHasSome) {
  EXPECT_EQ(readAs("brb,be right back\nty,thank you\n"), "|brb|be right back/|ty|thank you/");
  EXPECT_EQ(readAs("a,b\nc,d\n", {u',', true, {}}), "|c|d/");
  EXPECT_EQ(readAs("addr,The text of my address\n"), "|addr|The text of my address/");
  EXPECT_EQ(readAs("sep=;\r\nabbr;text\r\na,b;c\r\n"), "|a,b|c/");
  EXPECT_EQ(readAs(";;\n ;;\nabbr;text\na;b\n"), "|a|b/");
  EXPECT_EQ(readAs("\xFF\xFE\n\0a\0b\0b\0r\0,\0t\0e\0x\0t\0\n\0a\0,\0b\0"s), "|a|b/");
}

// What a guess would leave out is not guessed.
TEST_F(CsvFile, AsksWhereAGuessMayLeaveOutTexts) {
  const std::pair<std::string_view, std::string> cases[] = {
      {"text,Código\nHello,hi\n", "“text”, “Código”"},
      {"name,Ada Lovelace\naddr,12 High Street\n", "--no-header"},
      {"a,b,c,d\n1,2,3,4\n", "“a”, “b”, “c”, “d”"},
      {"Dear Ada,\n\nhere, as promised, it is.\nYours\n", "different numbers of fields"},
      {"brb,be right back\nhi,Hello, world\n", "different numbers of fields"},
  };
  for (const auto& [table, reason] : cases) EXPECT_THAT(readAs(table), HasSubstr(reason)) << table;
  EXPECT_EQ(readAs("text,Código\nHello,hi\n", {{}, {}, CsvColumns{{}, 1, 0}}), "|hi|Hello/");
  EXPECT_EQ(readAs("hi,Hello, world\nbrb,be back\nty,thanks\n", {{}, false, {}}),
            "|hi|Hello/|brb|be back/|ty|thanks/");
}

TEST_F(CsvFile, TellsWhatIsTakenForWhatAndEachLineOfWhichSomethingIsLeftOut) {
  EXPECT_EQ(noticesOf("Notes,abbr,text,,\n,a,b,,\nx,c,d,,\n"),
            "The row in line 1 is taken as the names of the columns. Abbreviations: “abbr”. Texts: “text”. "
            "Left out: “Notes”.\n");
  EXPECT_EQ(noticesOf("a,b\n"),
            "No row is taken as names of the columns. Abbreviations: “Column 1”. Texts: “Column 2”.\n");
  const std::string table =
      "sep=,\r\n\r\nabbr,text\r\na,\"one\r\ntwo\"\r\nb,Hello, world\r\nc,\r\nd,say \"\"hi\"\"\r\n"
      "e, \"x, y\"\r\nf,5\" screen\r\ng,6\" tv\r\nh,b, c\r\n";
  const auto notices = noticesOf(table);
  EXPECT_THAT(notices, StartsWith("The row in line 3 is taken as the names"));
  EXPECT_THAT(notices, HasSubstr("2 rows have more fields than the table has columns"));
  EXPECT_THAT(notices, HasSubstr("(lines 6, 12)"));
  EXPECT_THAT(notices, HasSubstr("The row in line 7 has an abbreviation but no text and is left out."));
  EXPECT_THAT(notices, HasSubstr("The row in line 8 has doubled quotation marks"));
  EXPECT_THAT(notices, HasSubstr("The row in line 9 has blanks beside quotation marks"));
  EXPECT_THAT(notices, HasSubstr("joins the row in line 10 to those behind it"));
  EXPECT_THAT(readAs(table), HasSubstr("|b|Hello/|d|say"));

  std::string many = "abbr,text\n";
  for (int i = 0; i < 30; ++i) many += "x,\"\n\",y\n";
  EXPECT_THAT(noticesOf(many), HasSubstr("30 rows have more"));
  EXPECT_THAT(noticesOf(many), HasSubstr("(lines 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, …)"));
}

TEST_F(CsvFile, TellsOfEncodingsAndOpenQuotationMarks) {
  const auto outcome = noticesOf("abbr,text\nx,y\nGr\374\337e,\"open\nz,z\n");
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
