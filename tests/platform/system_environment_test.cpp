#include "platform/environment/system_environment.h"

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
  EXPECT_THAT(environment.preferredLanguages(), ElementsAre("de_DE", "en_GB"));
  EXPECT_THAT(environment.textLanguages(), ElementsAre("pt_BR", "en_GB"));
  setenv("LC_ALL", "C", 1);
  EXPECT_THAT(environment.textLanguages(), ElementsAre("en")) << "LANGUAGE is void there";
  unsetenv("LC_ALL");
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

TEST(SystemEnvironment, NamesTheTimeZoneOfTheSession) {
  const SystemEnvironment environment("/usr/bin");
  const std::pair<const char*, const char*> cases[] = {{"Asia/Kolkata", "Asia/Kolkata"},
                                                       {":America/New_York", "America/New_York"},
                                                       {"/usr/share/zoneinfo/posix/Asia/Tokyo", "Asia/Tokyo"},
                                                       {"CET-1CEST,M3.5.0,M10.5.0/3", ""},
                                                       {"GMT-3", ""},
                                                       {"", "UTC"}};
  for (const auto& [variable, name] : cases) {
    setenv("TZ", variable, 1);
    EXPECT_EQ(environment.timeZone().name(), name);
  }
  unsetenv("TZ");
  EXPECT_NE(environment.timeZone().name(), "");
}

}  // namespace
}  // namespace quorlo
