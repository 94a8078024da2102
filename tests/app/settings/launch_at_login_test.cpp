#include "app/settings/launch_at_login.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace quorlo {
namespace {

struct LaunchAtLoginTest : testing::Test {
  ~LaunchAtLoginTest() override { std::filesystem::remove_all(folder); }
  std::string entry() const {
    std::ifstream stream(folder / "org.quorlo.Quorlo.desktop");
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  std::filesystem::path folder = std::filesystem::path(testing::TempDir()) /
                                 testing::UnitTest::GetInstance()->current_test_info()->name() / "autostart";
  LaunchAtLogin service{folder, R"(/opt/a b/50%/$x\quorlo)"};
};

TEST_F(LaunchAtLoginTest, WritesAnEntryWithAQuotedCommandAndTakesItAway) {
  int told = 0;
  const auto observation = service.observe([&] { ++told; });
  EXPECT_TRUE(service.setEnabled(false)) << "nothing to remove";
  EXPECT_TRUE(service.setEnabled(true));
  EXPECT_TRUE(service.isEnabled());
  EXPECT_NE(entry().find(R"(Exec="/opt/a b/50%%/\\$x\\\\quorlo")"), std::string::npos) << entry();
  EXPECT_TRUE(service.setEnabled(false));
  EXPECT_FALSE(service.isEnabled());
  EXPECT_EQ(entry(), "");
  EXPECT_EQ(told, 3);
}

TEST_F(LaunchAtLoginTest, FollowsWhatTheDesktopsOwnSettingsWriteIntoTheEntry) {
  EXPECT_TRUE(service.setEnabled(true));
  for (const auto* line : {"Hidden=true\n", "X-GNOME-Autostart-enabled = false\n"}) {
    std::ofstream(folder / "org.quorlo.Quorlo.desktop") << "[Desktop Entry]\nExec=quorlo\n" << line;
    EXPECT_FALSE(service.isEnabled()) << line;
    EXPECT_TRUE(service.setEnabled(true));
    EXPECT_TRUE(service.isEnabled());
  }
}

TEST_F(LaunchAtLoginTest, SaysWhenTheEntryCannotBeWritten) {
  std::filesystem::create_directories(folder.parent_path());
  std::ofstream(folder.string()) << "a file where the folder should be";
  EXPECT_FALSE(service.setEnabled(true));
  EXPECT_FALSE(service.isEnabled());
}

}  // namespace
}  // namespace quorlo
