#include "program/crash_report.h"

#include "base/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace quorlo {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

[[noreturn]] void crashIn(const std::filesystem::path& directory) {
  reportCrashes(directory, "1.2.3");
  logError("ERROR: #first1; something with #secret in it");
  logInfo("Automatically fixing #secret");
  logWarning("WARNING: #ejefff20 - secret");
  std::raise(SIGSEGV);
  std::_Exit(0);
}

TEST(CrashReportTest, ACrashLeavesTagsAndStackButNothingOfTheUserAndIsMentionedOnce) {
  const auto directory = std::filesystem::path(::testing::TempDir()) / "crash-report-test";
  std::filesystem::remove_all(directory);
  EXPECT_EQ(takeCrashReport(directory), std::nullopt);

  EXPECT_EXIT(crashIn(directory), ::testing::KilledBySignal(SIGSEGV), "");

  const auto report = takeCrashReport(directory);
  ASSERT_TRUE(report);
  std::ifstream file(*report);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(text, HasSubstr("Quorlo 1.2.3 ended unexpectedly.\nTime: 2"));
  EXPECT_THAT(text, HasSubstr("newest first: #ejefff20 #first1\nStack:\n"));
  EXPECT_THAT(text, HasSubstr("gsignal"));
  EXPECT_THAT(text, Not(HasSubstr("secret")));
  EXPECT_EQ(takeCrashReport(directory), std::nullopt);
}

}  // namespace
}  // namespace quorlo
