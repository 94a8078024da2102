#include "text/utf.h"
#include "text/base64.h"
#include "text/locale_quotes.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

using namespace std::string_literals;

TEST(Utf, ReplacesEachIllFormedSequenceAndNamesTheFirst) {
  const struct {
    std::string utf8;
    std::u16string utf16;
    std::size_t illFormedAt;  // npos: none
  } cases[] = {
      {"aé€🙂\0z"s, u"aé€🙂\0z"s, std::string::npos},
      {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", u"\uFFFF\U0010FFFF", std::string::npos},
      {"ab\xFFz", u"ab\uFFFDz", 2},
      {"\xC0\xAF", u"\uFFFD\uFFFD", 0},                      // overlong "/"
      {"a\xED\xA0\x80", u"a\uFFFD\uFFFD\uFFFD", 1},          // a surrogate
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD", 0},  // above U+10FFFF
      {"🙂\xF0\x9F\x99", u"🙂\uFFFD", 4},                // cut off
  };
  for (const auto& [utf8, utf16, illFormedAt] : cases) {
    EXPECT_EQ(toUtf16(utf8), utf16) << utf8;
    const auto strict = toUtf16Strict(utf8);
    if (illFormedAt == std::string::npos) {
      EXPECT_EQ(toUtf8(strict.value()), utf8);
    } else {
      ASSERT_FALSE(strict.ok()) << utf8;
      const auto place = "byte " + std::to_string(illFormedAt) + ".";
      EXPECT_NE(strict.error().message.find(place), std::string::npos) << strict.error().message;
    }
  }
}

TEST(Utf, WritesLoneSurrogatesAsTheReplacementCharacter) {
  EXPECT_EQ(toUtf8(u"a\xD83Dz\xDE42\xD83D\xDE42\xD83D"), "a\uFFFDz\uFFFD🙂\uFFFD");
}

TEST(Base64, WritesAndReadsTheVectorsOfTheStandard) {
  const std::string encoded[] = {"",         "Zg==",     "Zm8=",     "Zm9v",
                                 "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy", "Zm9vYmFy++//"};
  const std::string plain = "foobar\xFB\xEF\xFF";
  for (std::size_t i = 0; i < std::size(encoded); ++i) {
    const std::vector<std::uint8_t> bytes(plain.begin(), i < 7 ? plain.begin() + i : plain.end());
    EXPECT_EQ(toBase64(bytes), encoded[i]);
    EXPECT_EQ(fromBase64(encoded[i]).value(), bytes);
  }
  for (const auto* bad : {"Z", "Zg=", "====", "Zh==", "Zm9=", "Zg==Zg==", "Zm9\n", "Zm-_"}) {
    EXPECT_FALSE(fromBase64(bad).ok()) << bad;
  }
}

TEST(QuotationMarks, AreThoseOfTheLocaleOrPlainOnes) {
  for (const auto* german : {"de", "de-DE", "de_DE.UTF-8"}) {
    EXPECT_EQ(quotationMarks(german), (QuotationMarks{u"„", u"“"})) << german;
  }
  for (const auto* unknown : {"xx_XX", "no such locale", "../../etc"}) {
    EXPECT_EQ(quotationMarks(unknown), QuotationMarks()) << unknown;
  }
}

}  // namespace
}  // namespace quorlo
