#include "text/graphemes.h"

#include "text/random_text.h"
#include "text/utf.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(Graphemes, CountWhatAReaderTakesForOneCharacter) {
  const struct {
    std::u16string text;
    std::size_t count;
    std::size_t lastStart;
  } cases[] = {
      {u"", 0, 0},
      {u"ae\u0301", 2, 1},                                     // a combining mark
      {u"x\U0001F468\u200D\U0001F469\u200D\U0001F467", 2, 1},  // a family
      {u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", 2, 4},     // two flags
      {u"\U0001F1E9\U0001F1EA\U0001F1EB", 2, 4},               // a flag and a half
      {u"\u1112\u1161\u11ABa", 2, 3},                          // 한 in jamo
      {u"\r\n\n", 2, 2},
      {u"\xD83D\xD83D", 2, 1},  // lone surrogates
  };
  for (const auto& [text, count, lastStart] : cases) {
    EXPECT_EQ(graphemeCount(text), count) << toUtf8(text);
    EXPECT_EQ(graphemeStarts(text).size(), count) << toUtf8(text);
    EXPECT_EQ(lastGraphemeStart(text), lastStart) << toUtf8(text);
  }
}

// The buffer's own count and the place where it would cut agree with a fresh look at the whole text.
void expectAsCounted(const GraphemeBuffer& buffer) {
  const auto starts = graphemeStarts(buffer.text());
  ASSERT_EQ(buffer.graphemeCount(), starts.size()) << toUtf8(buffer.text());
  auto shorter = buffer;
  shorter.removeLast();
  ASSERT_EQ(shorter.text().size(), starts.empty() ? 0 : starts.back()) << toUtf8(buffer.text());
}

TEST(GraphemeBuffer, KeepsTheBoundariesOfTheWholeTextWhateverIsTyped) {
  Random random(1);
  for (int round = 0; round < 300; ++round) {
    GraphemeBuffer buffer;
    std::u16string typed;
    for (int key = 0; key < 60; ++key) {
      if (pick(random, 6) == 0) {
        typed.resize(lastGraphemeStart(typed));
        buffer.removeLast();
      } else {
        const auto keyText = randomText(random, 3);
        typed += keyText;
        buffer.append(keyText);
      }
      ASSERT_EQ(buffer.text(), typed);
      ASSERT_NO_FATAL_FAILURE(expectAsCounted(buffer));
    }
  }
}

TEST(GraphemeBuffer, LooksOnlyAtTheEndsOfAnEndlessCluster) {
  const std::u16string marks(200, u'\u0301');
  for (const auto* start : {u"e", u"\U0001F468", u"\U0001F1E9\U0001F1EA", u"\U0001F1E9", u"\u1100"}) {
    for (const auto* end : {u"", u"\u200D", u"\u0903", u"\u200D\xD83D"}) {
      for (const auto* next :
           {u"a", u"\u0301", u"\U0001F469", u"\U0001F1EB", u"\u1161", u"\r\n", u"\xDC69"}) {
        GraphemeBuffer buffer;
        for (const auto& part : {start + marks, std::u16string(end), std::u16string(next)})
          buffer.append(part);
        ASSERT_NO_FATAL_FAILURE(expectAsCounted(buffer));
      }
    }
  }
}

}  // namespace
}  // namespace quorlo
