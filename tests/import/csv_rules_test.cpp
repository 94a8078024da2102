#include "import/csv/cswiftv.h"

#include "text/utf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace quorlo {
namespace {

using enum CSwiftV::Header;
using Rows = std::vector<std::vector<std::u16string>>;

Rows rowsOf(const CSwiftV& table) {
  Rows rows;
  for (const auto row : table.rows()) rows.emplace_back(row.begin(), row.end());
  return rows;
}

Rows parse(std::u16string_view text, char16_t separator) {
  return rowsOf(CSwiftV::parse(text, separator, none).value());
}

TEST(CsvRules, SplitTrimAndCleanRowsAndFields) {
  const std::pair<std::u16string_view, Rows> cases[] = {
      {u"", {}},
      {u"a,b\nc,d", {{u"a", u"b"}, {u"c", u"d"}}},
      {u"a\n", {{u"a"}, {}}},
      {u"\n\r\n\r", {{}, {}, {}}},
      {u",\n,,", {{u"", u""}, {u"", u"", u""}}},
      {u"a,\"b,c\",d", {{u"a", u"b,c", u"d"}}},
      {u"1,\"two\nlines\",3\n4", {{u"1", u"two\nlines", u"3"}, {u"4"}}},
      {u"1,\"two\r\nlines\"\r\n4\r\n", {{u"1", u"two\r\nlines"}, {u"4"}, {}}},
      {u"\"\"x\"\"", {{u"\"x\""}}},
      {u"\"say \"\"hi\"\"\"", {{u"say \"\"hi\"\""}}},
      {u"\"", {{u""}}},
      {u"\"\",\"\"\"\",\"\"\"", {{u"", u"\"\"", u"\""}}},
      {u"\r\ra\r\r\nb", {{u"a"}, {u"b"}}},
      {u"a,\"never closed\nb,c\r\n\n", {{u"a", u"\"never closed\nb,c"}}},
  };
  for (const auto& [text, rows] : cases) EXPECT_EQ(parse(text, u','), rows) << toUtf8(text);
  EXPECT_EQ(parse(u"a;\"b;c\";d,e\t", u';'), (Rows{{u"a", u"b;c", u"d,e\t"}}));
}

TEST(CsvRules, TheFirstRowNamesTheColumns) {
  const auto table = CSwiftV::parse(u" a\t,\"b \",a\n1,2,3,4\n5\n", u',', firstRow).value();
  EXPECT_EQ(table.headers(), (std::vector<std::u16string>{u"a", u"b", u"a"}));
  EXPECT_EQ(table.columnCount(), 3U);
  EXPECT_EQ(rowsOf(table), (Rows{{u"1", u"2", u"3", u"4"}, {u"5"}, {}}));
  const auto keyed = table.keyedRows();
  ASSERT_EQ(keyed.size(), 3U);
  EXPECT_EQ(keyed[0], (std::map<std::u16string_view, std::u16string_view>{{u"a", u"3"}, {u"b", u"2"}}));
  EXPECT_EQ(keyed[1], (std::map<std::u16string_view, std::u16string_view>{{u"a", u"5"}}));

  const auto unnamed = CSwiftV::parse(u"a\n1,2\n", u',', none).value();
  EXPECT_EQ(unnamed.headers(), (std::vector<std::u16string>{u"Column 1", u"Column 2"}));
  EXPECT_EQ(rowsOf(unnamed), (Rows{{u"a"}, {u"1", u"2"}, {}}));
  EXPECT_TRUE(unnamed.keyedRows().empty());
  EXPECT_EQ(CSwiftV::parse(u"", u',', firstRow).value().columnCount(), 0U);
}

// The rules word by word, whatever that costs.
std::vector<std::u16string> naiveSplit(const std::u16string& text, char16_t separator) {
  if (text.empty()) return {};
  std::vector<std::u16string> result;
  for (std::size_t start = 0, end = 0; end != text.npos; start = end + 1) {
    end = text.find(separator, start);
    const auto piece = text.substr(start, end == text.npos ? end : end - start);
    const bool isQuoted = !result.empty() && std::ranges::count(result.back(), u'"') % 2 == 1;
    isQuoted ? result.back() += separator + piece : result.emplace_back(piece);
  }
  return result;
}

Rows naiveRows(const std::u16string& text, char16_t separator) {
  Rows rows;
  for (auto row : naiveSplit(text, u'\n')) {
    while (!row.empty() && (row.front() == u'\r' || row.front() == u'\n')) row.erase(0, 1);
    while (!row.empty() && (row.back() == u'\r' || row.back() == u'\n')) row.pop_back();
    rows.push_back(naiveSplit(row, separator));
    for (auto& field : rows.back()) {
      if (field == u"\"") field.clear();
      if (field.starts_with(u'"') && field.ends_with(u'"')) field = field.substr(1, field.size() - 2);
    }
  }
  return rows;
}

TEST(CsvRules, ReadRandomTextsLikeANaiveReader) {
  constexpr std::u16string_view kCharacters = u"aä\",;\"\n\r ,";
  std::mt19937 random(4);
  for (int i = 0; i < 20'000; ++i) {
    std::u16string text(random() % 24, u' ');
    for (auto& each : text) each = kCharacters[random() % kCharacters.size()];
    ASSERT_EQ(parse(text, u','), naiveRows(text, u',')) << i;
  }
}

TEST(CsvRules, BoundTheColumns) {
  const std::u16string million(999'999, u',');
  EXPECT_EQ(CSwiftV::parse(million, u',', firstRow).value().columnCount(), 1'000'000U);
  const auto wider = CSwiftV::parse(u"a\n\"\n\"\n" + million + u",", u',', firstRow);
  ASSERT_FALSE(wider);
  EXPECT_EQ(wider.error().message,
            "the row in line 4 has more than a million fields; choose another separator");
}

}  // namespace
}  // namespace quorlo
