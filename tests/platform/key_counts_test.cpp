#include "platform/insertion/key_counts.h"

#include <gtest/gtest.h>

#include <string>

namespace quorlo {
namespace {

struct Case {
  std::u16string text;
  std::size_t unknown, gtk, qt, terminal, web;
};

template <class Count>
void expectCounts(const Case& each, Count count) {
  const auto with = [&](Toolkit toolkit) { return count(each.text, [=] { return toolkit; }); };
  EXPECT_EQ(with(Toolkit::unknown), each.unknown);
  EXPECT_EQ(with(Toolkit::gtk), each.gtk);
  EXPECT_EQ(with(Toolkit::qt), each.qt);
  EXPECT_EQ(with(Toolkit::terminal), each.terminal);
  EXPECT_EQ(with(Toolkit::web), each.web);
}

TEST(KeyCountsTest, BackspaceTakesWhatTheToolkitErasesByOnePress) {
  const Case cases[] = {
      {u"", 0, 0, 0, 0, 0},
      {u"sig", 3, 3, 3, 3, 3},
      {u"e\u0301x", 2, 2, 3, 2, 3},
      {u"q\u0323\u0307", 1, 1, 3, 1, 3},
      {u"\U0001F600\U0001F468\u200D\U0001F469", 2, 2, 4, 3, 2},
      {u"\U0001F1E9\U0001F1EA", 1, 1, 2, 2, 1},
      {u"\U0001F44D\U0001F3FD", 1, 1, 2, 2, 1},
      {u"\u2764\uFE0F", 1, 1, 2, 1, 1},
      {u"\u0928\u093F", 1, 2, 2, 2, 2},
      {u"\u0958", 1, 2, 1, 1, 1},  // GTK decomposes it
      {u"\u0628\u064E", 1, 2, 2, 1, 2},
      {u"\u0E01\u0E33", 1, 2, 2, 2, 2},
      {u"\u1112\u1161\u11AB", 1, 3, 3, 3, 3},
      {u"\uD55C", 1, 1, 1, 1, 1},
  };
  for (const auto& each : cases) expectCounts(each, backspacesOver);
}

TEST(KeyCountsTest, LeftPassesACharacterAsTheUserSeesIt) {
  const Case cases[] = {
      {u"a\nb", 3, 3, 3, 3, 3},
      {u"e\u0301", 1, 1, 1, 1, 1},
      {u"\U0001F468\u200D\U0001F469\U0001F600", 2, 2, 2, 3, 2},
      {u"\u0928\u093F", 1, 1, 1, 2, 1},
      {u"\u0E01\u0E33", 2, 2, 2, 2, 2},
      {u"\u1112\u1161\u11AB", 1, 1, 1, 3, 1},
  };
  for (const auto& each : cases) expectCounts(each, leftPressesOver);
}

TEST(KeyCountsTest, TheToolkitIsLookedUpOnlyForATextThatNeedsIt) {
  const auto fail = []() -> Toolkit {
    ADD_FAILURE();
    return Toolkit::unknown;
  };
  EXPECT_EQ(backspacesOver(u"grüß", fail), 4U);
  EXPECT_EQ(leftPressesOver(u"grüß", fail), 4U);
}

}  // namespace
}  // namespace quorlo
