#include "cli/terminal_text.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(TerminalTextTest, CountsTheColumnsThatATerminalDraws) {
  const std::pair<const char*, std::size_t> cases[] = {
      {"", 0},       {"abc", 3}, {"Grüße", 5},    {"e\u0301", 1}, {"日本語", 6}, {"👩‍🚀", 2},
      {"❤️", 2}, {"ﾊﾛ", 2},  {"a\u200Db", 2},
  };
  for (const auto& [text, columns] : cases) EXPECT_EQ(displayWidth(text), columns) << text;
}

TEST(TerminalTextTest, CutsBetweenCharactersAndSaysSo) {
  EXPECT_EQ(cutToWidth("Grüße", 5), "Grüße");
  EXPECT_EQ(cutToWidth("Grüße!", 5), "Grüß…");
  EXPECT_EQ(cutToWidth("日本語", 5), "日本…");
  EXPECT_EQ(cutToWidth("日本語", 4), "日…") << "half a character fits nowhere";
  EXPECT_EQ(cutToWidth("ne\u0301e", 2), "n…");
  EXPECT_EQ(cutToWidth("abc", 0), "");
}

TEST(TerminalTextTest, ShowsWhatATerminalWouldObey) {
  EXPECT_EQ(printable("a\x1b[2J\r\x7f\tb\u009bc\nd", LineBreaks::shown), "a␛[2J␍␡ b\uFFFDc⏎d");
  EXPECT_EQ(printable("a\nb\xff", LineBreaks::kept), "a\nb\uFFFD");
}

}  // namespace
}  // namespace quorlo
