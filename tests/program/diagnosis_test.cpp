#include "program/doctor/diagnosis.h"
#include "program/doctor/library_check.h"

#include "fakes/temporary_directory.h"
#include "store/sqlite/file/store_opening.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace quorlo {
namespace {

using ::testing::HasSubstr;

TEST(DiagnosisTest, EachTroubleIsNamedWithARemedyAndNothingElseIsAProblem) {
  struct Case {
    std::function<void(SessionFacts&)> trouble;
    const char* said;
    bool isProblem;
  };
  const Case cases[] = {
      {[](SessionFacts& f) { f.displayProblem = "There is no X server."; }, "There is no X server.", true},
      {[](SessionFacts& f) { f.obstacles = {AccessibilityObstacle::waylandSession}; }, "Wayland", true},
      {[](SessionFacts& f) { f.obstacles = {AccessibilityObstacle::noXtest}; }, "XTEST", true},
      {[](SessionFacts& f) { f.obstacles = {AccessibilityObstacle::noKeyboard}; }, "keyboard", false},
      {[](SessionFacts& f) { f.guardIsInstalled = false; }, "quorlo-keyboard-guard is missing", true},
      {[](SessionFacts& f) { f.hasSessionBus = false; }, "no session bus", true},
      {[](SessionFacts& f) { f.unwritableFolder = "The folder /x cannot be written."; }, "/x cannot", true},
      {[](SessionFacts& f) { f.libraryProblem = "It is damaged."; }, "It is damaged.", true},
      {[](SessionFacts& f) {
         f.duplicates.abbreviations = {"brb", "sig"};
       },
       "\"brb\", \"sig\"", true},
      {[](SessionFacts& f) { f.duplicates.folderTitles = {"Letters"}; }, "\"Letters\"", true},
      {[](SessionFacts& f) { f.hasStatusNotifierHost = false; }, "shows no tray icons", false},
      {[](SessionFacts& f) { f.clipboardManager = "clipit"; }, "clipit keeps", false},
      {[](SessionFacts& f) { f.hasNotificationServer = false; }, "No program shows notifications", false},
      {[](SessionFacts& f) { f.hasAccessibilityBus = false; }, "expand in password fields too", false},
      {[](SessionFacts& f) { f.abbreviationsEnabled = false; }, "quorlo --abbreviations on", false},
      {[](SessionFacts& f) { f.isRunning = false; }, "Quorlo is not running", false},
      {[](SessionFacts& f) {
         f.obstaclesOfRunning = {"The keyboard is taken.", "Close it."};
       },
       "Close it.", true},
  };
  for (const auto& [trouble, said, isProblem] : cases) {
    SessionFacts facts;
    facts.snippets = 12;
    trouble(facts);
    const auto text = report(diagnose(facts));
    EXPECT_THAT(text, HasSubstr(said));
    EXPECT_THAT(text, HasSubstr(isProblem ? "One problem was found." : "Nothing keeps Quorlo from working."));
  }
}

TEST(DiagnosisTest, WhatTheRunningProgramLacksIsSaidOnce) {
  SessionFacts facts;
  facts.obstacles = {AccessibilityObstacle::noKeyboard};
  facts.obstaclesOfRunning = {"No keyboard is plugged in.", "Plug one in."};
  const auto text = report(diagnose(facts));
  EXPECT_EQ(text.find("No keyboard"), text.rfind("No keyboard")) << text;
}

TEST(DiagnosisTest, TheLibraryIsLookedAtWithoutBeingTouched) {
  const TemporaryDirectory directory;
  EXPECT_EQ(checkLibrary(directory.path()).value(), std::nullopt);
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));

  ASSERT_TRUE(openStore(directory.path(), {}));
  EXPECT_EQ(checkLibrary(directory.path()).value(), 0U);

  std::ofstream(directory.path() / "private.sqlite")
      << "this is no library at all, but long enough to be read";
  EXPECT_FALSE(checkLibrary(directory.path()));
}

}  // namespace
}  // namespace quorlo
