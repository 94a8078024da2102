#pragma once

#include "platform/user_defaults.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <map>
#include <string>

namespace quorlo {

// What every store of settings does.

inline const std::map<std::string, DefaultsValue>& valuesOfEveryType() {
  static const std::map<std::string, DefaultsValue> values{
      {"flag", true},
      {"smallest", std::numeric_limits<std::int64_t>::min()},
      {"whole real", 3.0},
      {"real", 0.1},
      {"empty", std::string()},
      {"number as text", std::string("12")},
      {"text", std::string("\"quoted\\\" \n\xE2\x8C\x98 [x] = %41")},
      {"date", Date(std::chrono::milliseconds(1'700'000'000'123))},
      {"old date", Date(std::chrono::milliseconds(-2'000'000'000'001))},
  };
  return values;
}

inline void writeValuesOfEveryType(UserDefaults& defaults) {
  for (const auto& [key, value] : valuesOfEveryType())
    defaults.setValue(DefaultsDomain::standard, key, value);
}

inline void expectValuesOfEveryType(const UserDefaults& defaults) {
  for (const auto& [key, value] : valuesOfEveryType()) {
    const auto* found = defaults.value(DefaultsDomain::standard, key);
    ASSERT_NE(found, nullptr) << key;
    EXPECT_EQ(*found, value) << key;
    EXPECT_EQ(defaults.value(DefaultsDomain::appGroup, key), nullptr) << key;
  }
}

inline void expectTheLastWriteToHold(UserDefaults& defaults) {
  constexpr auto kDomain = DefaultsDomain::appGroup;
  defaults.setValue(kDomain, "key", true);
  defaults.setValue(kDomain, "key", "text");
  EXPECT_EQ(*defaults.value(kDomain, "key"), DefaultsValue("text"));
  defaults.removeValue(kDomain, "key");
  defaults.removeValue(kDomain, "never there");
  EXPECT_EQ(defaults.value(kDomain, "key"), nullptr);
}

}  // namespace quorlo
