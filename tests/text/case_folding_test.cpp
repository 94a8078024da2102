#include "text/case_folding.h"

#include "text/random_text.h"
#include "text/utf.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(CaseFolding, FindsANeedleInAnyCaseButNotWithoutItsAccents) {
  const struct {
    std::u16string haystack;
    std::u16string needle;
    bool found;
  } cases[] = {
      {u"STRASSE", u"straße", true}, {u"ΟΔΥΣΣΕΥΣ", u"οδυσσευς", true},        // both small sigmas
      {u"café", u"cafe", false},     {u"cafe\u0301", u"CAFÉ", true},          // é in two code points
      {u"ﬁn", u"FIN", true},                                                  // a ligature
      {u"TITLE", u"tıtle", false},                                            // no Turkish rules
      {u"İ", u"i\u0307", true},      {u"\U00010400x", u"\U00010428X", true},  // Deseret, outside the BMP
      {u"a[b", u"A{B", false},  // neighbours of the letters in ASCII
  };
  for (const auto& [haystack, needle, found] : cases) {
    EXPECT_EQ(containsFolded(haystack, needle), found) << toUtf8(haystack) << " / " << toUtf8(needle);
    EXPECT_EQ(FoldedNeedle(needle).isInFolded(foldCase(haystack)), found) << toUtf8(haystack);
  }
}

TEST(CaseFolding, FindsANeedleAtEveryPlaceOfATextOfEveryLength) {
  for (const std::u16string needle : {u"Xy", u"x-Y"}) {
    for (std::size_t length = needle.size(); length < 100; ++length) {
      const std::u16string haystack(length, u'X');
      EXPECT_FALSE(containsFolded(haystack, needle));
      for (std::size_t at = 0; at + needle.size() <= length; ++at) {
        auto found = haystack;
        found.replace(at, needle.size(), needle);
        ASSERT_TRUE(containsFolded(found, needle)) << toUtf8(found);
      }
    }
  }
}

TEST(CaseFolding, IsStableAndIndependentOfHowATextIsCut) {
  Random random(2);
  for (int round = 0; round < 2000; ++round) {
    const auto text = randomText(random, 30);
    const auto folded = foldCase(text);
    EXPECT_EQ(foldCase(folded), folded) << toUtf8(text);
    EXPECT_EQ(containsFolded(u"Q" + text + u"Q", text), !text.empty()) << toUtf8(text);
  }
}

}  // namespace
}  // namespace quorlo
