#include "app/settings/insertion_settings.h"

#include "virtual_desktop/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quorlo {
namespace {

class InsertionSettingsTest : public ::testing::Test {
 protected:
  InsertionProfile profileOf(const std::string& application) {
    return settings.table().profileFor(application, {});
  }

  TempDir home;
  std::filesystem::path directory = home / "quorlo";
  InsertionSettings settings{directory};
};

TEST_F(InsertionSettingsTest, AChangeCountsAtOnceWhoeverMadeIt) {
  EXPECT_EQ(profileOf("viewer"), InsertionProfile());
  ASSERT_TRUE(settings.set({"viewer", {.method = InsertionMethod::type}}));
  EXPECT_EQ(profileOf("viewer").method, InsertionMethod::type);
  EXPECT_EQ(std::filesystem::status(directory / "applications").permissions(), std::filesystem::perms(0600));

  const auto text = readFile(directory / "applications");
  EXPECT_TRUE(text.starts_with("# How applications take what Quorlo inserts"));
  writeFile(directory / "applications", text + "broken\nother = off\n");
  EXPECT_EQ(profileOf("other").method, InsertionMethod::none);
  ASSERT_EQ(settings.problems().size(), 1U);
  EXPECT_TRUE(settings.problems()[0].message.starts_with((directory / "applications").string() +
                                                         ", Line 4: Write the application"));
  EXPECT_EQ(settings.entries().size(), 2U);

  ASSERT_TRUE(settings.remove("Viewer"));
  EXPECT_EQ(profileOf("viewer"), InsertionProfile());
  EXPECT_EQ(profileOf("other").method, InsertionMethod::none);
}

TEST_F(InsertionSettingsTest, TheOlderFileOfTerminalsCountsBelowTheOthers) {
  std::filesystem::create_directories(directory);
  writeFile(directory / "terminals", "# mine\nshell\nsecond\n");
  writeFile(directory / "applications", "second = type\n");
  EXPECT_EQ(profileOf("shell"), terminalProfile());
  EXPECT_EQ(profileOf("second").method, InsertionMethod::type);
  EXPECT_EQ(settings.entries().size(), 1U) << "those that can be changed";
}

TEST_F(InsertionSettingsTest, AFileThatCannotBeReadIsNamedAndLeftAlone) {
  std::filesystem::create_directories(directory / "applications");
  EXPECT_EQ(profileOf("emacs").pasteChords.size(), 1U);
  ASSERT_EQ(settings.problems().size(), 1U);
  const auto status = settings.set({"viewer", {.method = InsertionMethod::type}});
  ASSERT_FALSE(status);
  EXPECT_NE(status.error().message.find("applications"), std::string::npos);
}

}  // namespace
}  // namespace quorlo
