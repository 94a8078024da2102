#include "base/iso_date.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

TEST(IsoDates, ReadWhatStandsOnTheCalendarAndTheClock) {
  const std::pair<const char*, std::optional<std::int64_t>> cases[] = {
      {"1970-01-02", 86'400'000},
      {"1970-01-01T00:01", 60'000},
      {"1970-01-01 00:01:02", 62'000},
      {"1970-01-01T00:00:00.5Z", 500},
      {"1970-01-01T00:00:00.123456+00:00", 123},
      {"1970-01-01T01:00+01:00", 0},
      {"1969-12-31T22:30-0130", 0},
      {"1970-01-01T01:00+01", 0},
      {"2024-02-29", 1'709'164'800'000},
      {"2023-02-29", {}},
      {"1970-1-1", {}},
      {"1970-01-01T", {}},
      {"1970-01-01T24:00", {}},
      {"1970-01-01T00:00:00.", {}},
      {"1970-01-01T00:00+01:60", {}},
      {"1970-01-01T00:00Z ", {}},
      {"yesterday", {}},
      {"", {}},
      {"9999-01-01", {}},
  };
  for (const auto& [text, expected] : cases) {
    const auto date = readIsoDate(text);
    ASSERT_EQ(date.has_value(), expected.has_value()) << text;
    EXPECT_EQ(date.value_or(Date()), Date(milliseconds(expected.value_or(0)))) << text;
  }
}

TEST(IsoDates, AreWrittenSoThatTheyReadBack) {
  for (const std::int64_t moment : {0LL, -1LL, 1'700'000'000'123LL, -2'000'000'000'001LL}) {
    const auto date = Date(milliseconds(moment));
    EXPECT_EQ(readIsoDate(isoDate(date)), date) << isoDate(date);
  }
  EXPECT_EQ(isoDate(Date(milliseconds(-1))), "1969-12-31T23:59:59.999Z");
}

}  // namespace
}  // namespace quorlo
