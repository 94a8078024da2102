#include "macros/dates/date_macro.h"

#include "fakes/fake_environment.h"
#include "macros/captured_log.h"
#include "macros/dates/custom_date_format.h"
#include "macros/dates/date_and_time_formatter.h"
#include "text/utf.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;

// What the arguments of a date macro read as for a user.
class DateMacro : public testing::Test {
 protected:
  DateMacro() { environment_.date = sys_days(2023y / 11 / 14) + 8h + 5min + 9s; }  // 09:05:09 in Berlin

  std::string render(const std::string& arguments, const std::string& language = "de_DE",
                     DateOffset offset = DateOffset::apply) {
    environment_.languages = {language};
    formatter_.readEnvironment();
    const auto macro = toUtf16("%date:" + arguments + ":date%");
    return toUtf8(renderDateMacro(macro, momentOf(environment_.now()), offset, formatter_));
  }

  // Where an offset leads from the time on the clock of a zone.
  std::string moved(const std::string& zone, Date start, const std::string& math,
                    const std::string& mathType) {
    environment_.zone = zone;
    formatter_.readEnvironment();
    const auto macro = toUtf16("%date:math=" + math + ":mathType=" + mathType + ":date%");
    return toUtf8(formatCustomDate(u"%yyyy-%MM-%dd %HH%1111%mm%1111%ss %XXX",
                                   dateOfMacro(macro, momentOf(start), formatter_), formatter_));
  }

  FakeEnvironment environment_;
  DateAndTimeFormatter formatter_{environment_};
};

TEST_F(DateMacro, ReadsInTheStylesOfEachLanguage) {
  const struct {
    const char *language, *shortText, *mediumText, *fullDate;
  } cases[] = {
      {"en_US", "11/14/23, 9:05 AM", "Nov 14, 2023, 9:05:09 AM", "Tuesday, November 14, 2023"},
      {"de_DE", "14.11.23, 09:05", "14.11.2023, 09:05:09", "Dienstag, 14. November 2023"},
      {"ja_JP", "2023/11/14 9:05", "2023/11/14 9:05:09", "2023年11月14日火曜日"},
      {"ar_EG", "١٤\u200F/١١\u200F/٢٠٢٣، ٩:٠٥ ص", "١٤\u200F/١١\u200F/٢٠٢٣، ٩:٠٥:٠٩ ص",
       "الثلاثاء، ١٤ نوفمبر ٢٠٢٣"},
  };
  for (const auto& [language, shortText, mediumText, fullDate] : cases) {
    EXPECT_EQ(render("dateLength=short:timeLength=short", language), shortText);
    EXPECT_EQ(render("dateLength=medium:timeLength=medium", language), mediumText);
    EXPECT_EQ(render("dateLength=full:timeLength=none", language), fullDate);
  }
  EXPECT_EQ(render("dateLength=long:timeLength=long", "en_US"), "November 14, 2023 at 9:05:09 AM GMT+1");
}

TEST_F(DateMacro, JoinsStylesAndCustomFormatsWithoutASeparator) {
  const std::string formats = ":dateFormat=%dd.%MM.:timeFormat= um %HH%1111%mm";
  EXPECT_EQ(render("dateLength=custom:timeLength=short" + formats), "14.11.09:05");
  EXPECT_EQ(render("dateLength=short:timeLength=custom" + formats), "14.11.23 um 09:05");
  EXPECT_EQ(render("dateLength=custom:timeLength=custom" + formats), "14.11. um 09:05");
  EXPECT_EQ(render("dateLength=none:timeLength=none" + formats), "");
}

TEST_F(DateMacro, LogsUnknownLengthsAndLeavesThemOut) {
  CapturedLog log;
  EXPECT_EQ(render("dateLength=tiny:timeLength=short"), "09:05");
  EXPECT_EQ(render("dateLength=short:timeLength=:timeFormat=%HH"), "14.11.23");
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"WARNING: #f4rvcev (4 characters)",
                                                   "WARNING: #6hzrt6nn - (0 characters)"}));
  EXPECT_EQ(render("dateLength=short"), "Unsupported macro format");
}

TEST_F(DateMacro, FollowsTheUserToAnotherTimeZone) {
  EXPECT_EQ(render("dateLength=none:timeLength=short"), "09:05");
  environment_.zone = "America/New_York";
  EXPECT_EQ(render("dateLength=none:timeLength=short"), "03:05");
  environment_.zone = "Nowhere/Atall";
  EXPECT_EQ(render("dateLength=none:timeLength=short"), "08:05");
}

TEST_F(DateMacro, AddsItsOffsetInTheCalendarKeepingTheClockForDaysAndElapsedTimeForHours) {
  const auto noon = [](std::chrono::year_month_day day) { return sys_days(day) + 12h; };
  const auto* const berlin = "Europe/Berlin";
  const struct {
    const char* zone;
    Date start;
    const char *math, *mathType, *end;
  } cases[] = {
      {"UTC", noon(2024y / 3 / 1), "-1", "days", "2024-02-29 12:00:00 Z"},
      {"UTC", noon(2023y / 12 / 31), "+2", "months", "2024-02-29 12:00:00 Z"},
      {"UTC", noon(1970y / 1 / 1), "-26000", "days", "1898-10-25 12:00:00 Z"},
      {"UTC", noon(2023y / 11 / 14), "4000000000", "seconds", "2150-08-16 19:06:40 Z"},
      {berlin, noon(2024y / 3 / 30), "1", "days", "2024-03-31 13:00:00 +02:00"},
      {berlin, noon(2024y / 3 / 30), "24", "hours", "2024-03-31 14:00:00 +02:00"},
      {berlin, sys_days(2024y / 3 / 30) + 1h + 30min, "1", "days", "2024-03-31 03:30:00 +02:00"},
      {berlin, noon(2024y / 10 / 26), "1", "days", "2024-10-27 14:00:00 +01:00"},
      {berlin, sys_days(2024y / 10 / 27), "60", "minutes", "2024-10-27 02:00:00 +01:00"},
      {"America/New_York", noon(2024y / 11 / 3), "-1", "days", "2024-11-02 07:00:00 -04:00"},
  };
  for (const auto& [zone, start, math, mathType, end] : cases) {
    EXPECT_EQ(moved(zone, start, math, mathType), end);
  }
  for (const auto* const math : {"", "1.5", "99999999999999999999", "9000000000000000000"}) {
    EXPECT_EQ(moved("UTC", noon(2023y / 11 / 14), math, "years"), "2023-11-14 12:00:00 Z") << math;
  }
}

TEST_F(DateMacro, OffsetsOnlyWhereAskedToAndByKnownUnits) {
  const std::string arguments = "dateLength=short:timeLength=none:math=1:mathType=";
  EXPECT_EQ(render(arguments + "years"), "14.11.24");
  EXPECT_EQ(render(arguments + "years", "de_DE", DateOffset::ignore), "14.11.23");
  CapturedLog log;
  EXPECT_EQ(render(arguments + "weeks"), "14.11.23");
  EXPECT_EQ(render("dateLength=short:timeLength=none:mathType=weeks"), "14.11.23");
  EXPECT_EQ(log.lines(), std::vector<std::string>{"WARNING: #43fzuewin - (5 characters)"});
}

}  // namespace
}  // namespace quorlo
