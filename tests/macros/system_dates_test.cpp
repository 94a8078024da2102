#include "fakes/fake_environment.h"
#include "macros/dates/date_and_time_formatter.h"
#include "macros/dates/date_arithmetic.h"
#include "platform/environment/system_time_zone.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <random>

namespace quorlo {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

class SystemsClock : public FakeEnvironment {
 public:
  TimeZone timeZone() const override { return systemTimeZone(); }
};

// The zones of the system, and rules that only TZ can state.
std::vector<std::string> zones() {
  std::vector<std::string> names{"CET-1CEST,M3.5.0,M10.5.0/3",         "IST-5:30", "<+03>-3", "GMT+3",
                                 ":/usr/share/zoneinfo/Europe/Berlin", ""};
  for (const auto* const region :
       {"Africa", "America", "Antarctica", "Asia", "Australia", "Europe", "Pacific"}) {
    const auto folder = std::filesystem::path("/usr/share/zoneinfo") / region;
    if (!std::filesystem::exists(folder)) continue;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
      if (file.is_regular_file()) names.push_back(region + ("/" + file.path().filename().string()));
    }
  }
  return names;
}

std::string shownBySystem(Moment moment) {
  const auto time = std::chrono::system_clock::to_time_t(moment);
  std::tm local{};
  localtime_r(&time, &local);
  std::string text(64, '\0');
  text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local));
  return text;
}

// Of a moment of local time that comes but once.
bool isUnambiguous(const TimeZone& zone, Moment moment) {
  const std::chrono::local_time<milliseconds> local(moment.time_since_epoch() + zone.offsetAt(moment));
  const auto [first, last] = zone.momentsOf(local);
  EXPECT_TRUE(first == moment || last == moment);
  return first == last;
}

TEST(SystemDates, AgreeWithTheClockOfTheSystemInEveryZone) {
  const SystemsClock environment;
  std::mt19937 random(12);
  std::uniform_int_distribution<std::int64_t> seconds(-2'000'000'000, 4'000'000'000);
  for (const auto& zone : zones()) {
    setenv("TZ", zone.c_str(), 1);
    DateAndTimeFormatter formatter(environment);
    const auto& context = formatter.userContext();
    for (int i = 0; i < 50; ++i) {
      const Moment moment(std::chrono::seconds(seconds(random)));
      EXPECT_EQ(toUtf8(formatter.string(moment, context, u"yyyy-MM-dd HH:mm:ss")), shownBySystem(moment))
          << zone;
      const auto later = dateByAdding(400, DateAndTimeMacroMathType::days, moment, context);
      if (!isUnambiguous(context.timeZone, moment) || !isUnambiguous(context.timeZone, later)) continue;
      EXPECT_EQ(dateByAdding(-400, DateAndTimeMacroMathType::days, later, context), moment)
          << zone << " " << shownBySystem(moment);
    }
  }
  unsetenv("TZ");
}

TEST(SystemDates, NameTheZoneByItsPlaceOrItsOffset) {
  const SystemsClock environment;
  const auto shown = [&](const char* zone, std::u16string_view pattern) {
    setenv("TZ", zone, 1);
    DateAndTimeFormatter formatter(environment);
    return toUtf8(formatter.string(Moment(1'784'000'000s), formatter.userContext(), pattern));
  };
  EXPECT_EQ(shown("Africa/Cairo", u"VVV"), "Cairo");
  EXPECT_EQ(shown("America/Ciudad_Juarez", u"VV"), "America/Ciudad_Juarez");
  EXPECT_EQ(shown("Europe/Berlin", u"zzzz"), "Central European Summer Time");
  EXPECT_EQ(shown("CET-1CEST,M3.5.0,M10.5.0/3", u"zzzz"), "GMT+02:00");
  EXPECT_EQ(shown("IST-5:30", u"O"), "GMT+5:30");
  unsetenv("TZ");
}

TEST(SystemDates, KeepToTheClockWhereItIsSet) {
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  const auto zone = systemTimeZone();
  const auto local = [](std::chrono::year_month_day day, milliseconds time) {
    return std::chrono::local_time<milliseconds>(std::chrono::local_days(day) + time);
  };
  const auto [first, last] = zone.momentsOf(local(2026y / 10 / 25, 2h + 30min));
  EXPECT_EQ(last - first, 1h);
  const auto skipped = zone.momentsOf(local(2026y / 3 / 29, 2h + 30min));
  EXPECT_EQ(skipped.first, std::chrono::sys_days(2026y / 3 / 29) + 1h + 30min);
  EXPECT_EQ(skipped.last, skipped.first);
  const DateContext context{"en_US", zone};
  EXPECT_EQ(dateByAdding(1, DateAndTimeMacroMathType::days, first - 24h, context), first);
  EXPECT_EQ(dateByAdding(-1, DateAndTimeMacroMathType::days, last + 24h, context), last);
  EXPECT_EQ(dateByAdding(1, DateAndTimeMacroMathType::days, skipped.first - 24h, context), skipped.first);
  unsetenv("TZ");
}

}  // namespace
}  // namespace quorlo
