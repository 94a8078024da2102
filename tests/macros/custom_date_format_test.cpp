#include "macros/dates/custom_date_format.h"

#include "fakes/fake_environment.h"
#include "macros/dates/custom_date_format_groups.h"
#include "macros/dates/date_and_time_formatter.h"
#include "text/utf.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

using namespace std::chrono_literals;
using Pieces = std::vector<CustomDateFormatPiece>;

class CustomDateFormat : public testing::Test {
 protected:
  std::u16string render(std::u16string_view format, const std::string& language = "en_US") {
    environment_.languages = {language};
    formatter_.readEnvironment();
    return formatCustomDate(format, date_, formatter_);
  }

  Moment date_ = std::chrono::sys_days(2024y / 12 / 30) + 8h + 5min + 9s;  // 09:05:09 in Berlin
  FakeEnvironment environment_;
  DateAndTimeFormatter formatter_{environment_};
};

TEST_F(CustomDateFormat, WritesFieldsAndKeepsOtherText) {
  const struct {
    const char16_t *format, *text;
  } cases[] = {
      {u"dd.MM 12%1%2222!", u"dd.MM 12:?!"},
      {u"%dd.%MM.%YY", u"30.12.25"},  // the week of 30 December belongs to the next year
      {u"%hh%1111%mm %a, %QQQ", u"09:05 AM, Q4"},
      {u"%%d%%%dd", u"%d%%dd"},  // a percent sign takes those behind it
      {u"%😀😀%é [%J] %'%''", u"😀😀é [] '"},
      {u"%VV %VVV %XXX", u"Europe/Berlin Berlin +01:00"},
  };
  for (const auto& [format, text] : cases) EXPECT_EQ(toUtf8(render(format)), toUtf8(text));
  EXPECT_EQ(render(u"%d %MMMM %h%1111%mm %a", "ar_EG"), u"٣٠ ديسمبر ٩:٠٥ ص");
}

TEST_F(CustomDateFormat, WritesTheTwentyFourHourClockAlikeInEveryLanguage) {
  for (const auto* const language : {"en_US", "de_DE", "ar_EG", "he_IL", "fa_IR", "mr_IN"}) {
    EXPECT_EQ(render(u"%HH%1111%mm", language), u"09:05") << language;
  }
}

TEST_F(CustomDateFormat, IsCutIntoTokensForItsEditor) {
  EXPECT_EQ(tokenizeCustomDateFormat(u"am %dd.%MMMM%YY"),
            (Pieces{u"am ", QLDateToken{u"%dd"}, u".", QLDateToken{u"%MMMM"}, QLDateToken{u"%YY"}}));
  EXPECT_EQ(tokenizeCustomDateFormat(u"%HH%1%11111%2x"),
            (Pieces{QLDateToken{u"%HH"}, PlainDateToken{u"%1111"}, PlainDateToken{u"%1111"},
                    PlainDateToken{u"%2222"}, u"x"}));
  EXPECT_EQ(tokenizeCustomDateFormat(u"%%%dx%"), (Pieces{QLDateToken{u"%%%"}, u"dx%"}));
}

TEST_F(CustomDateFormat, OffersTokensThatAllHaveAnExample) {
  auto groups = dateTokenGroups();
  for (auto& group : timeTokenGroups()) groups.push_back(std::move(group));
  for (const auto& group : groups) {
    for (const auto& token : group.tokens) {
      EXPECT_EQ(tokenizeCustomDateFormat(token.representedString), Pieces{token});
      EXPECT_NE(render(token.representedString, "ar_EG"), u"") << toUtf8(token.representedString);
    }
  }
}

}  // namespace
}  // namespace quorlo
