#include "platform/system_environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace quorlo {
namespace {

using testing::ElementsAre;

TEST(SystemEnvironment, ListsTheLanguagesOfTheSession) {
  const SystemEnvironment environment("/usr/bin");
  for (const auto& [name, value] :
       {std::pair("LANGUAGE", "pt_BR"), {"LC_ALL", ""}, {"LC_TIME", "de_DE.UTF-8"}, {"LANG", "en_GB.UTF-8"}})
    setenv(name, value, 1);
  unsetenv("LC_MESSAGES");
  EXPECT_THAT(environment.preferredLanguages(), ElementsAre("pt_BR", "de_DE", "en_GB"));
  setenv("LANGUAGE", "", 1);
  EXPECT_THAT(environment.textLanguages(), ElementsAre("en_GB"));
}

TEST(SystemEnvironment, FindsTheUsersFoldersAndPassesOverRelativeOnes) {
  const SystemEnvironment environment("/usr/bin");
  setenv("HOME", "/home/ada", 1);
  setenv("XDG_DATA_HOME", "", 1);
  setenv("XDG_CONFIG_HOME", "here", 1);
  EXPECT_EQ(environment.dataDirectory(), "/home/ada/.local/share/org.quorlo.Quorlo");
  EXPECT_EQ(environment.configDirectory(), "/home/ada/.config/quorlo");
  setenv("XDG_DATA_HOME", "/data", 1);
  EXPECT_EQ(environment.dataDirectory(), "/data/org.quorlo.Quorlo");
}

TEST(SystemEnvironment, FollowsTheTimeZoneOfTheSession) {
  const SystemEnvironment environment("/usr/bin");
  setenv("TZ", "Asia/Kolkata", 1);
  EXPECT_EQ(environment.timeZone(), "Asia/Kolkata");
  setenv("TZ", ":America/New_York", 1);
  EXPECT_EQ(environment.timeZone(), "America/New_York");
  unsetenv("TZ");
  EXPECT_NE(environment.timeZone(), "");
}

}  // namespace
}  // namespace quorlo
