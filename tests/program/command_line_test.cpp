#include "program/command_line.h"

#include <gtest/gtest.h>

#include <vector>

namespace quorlo {
namespace {

std::variant<CommandLine, CommandLineExit> parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "quorlo");
  return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLineTest, ASwitchAloneChangesTheSettingAndWithALibraryRuns) {
  const auto alone = std::get<CommandLine>(parse({"--abbreviations", "on"}));
  EXPECT_TRUE(alone.onlyChangesSettings());
  EXPECT_EQ(alone.abbreviations, true);
  const auto running = std::get<CommandLine>(parse({"--abbreviations=off", "--library", "mine.json"}));
  EXPECT_FALSE(running.onlyChangesSettings());
  EXPECT_EQ(running.abbreviations, false);
  EXPECT_EQ(running.library, "mine.json");
  EXPECT_FALSE(std::get<CommandLine>(parse({})).onlyChangesSettings());
}

TEST(CommandLineTest, TellsCommandsFromFiles) {
  EXPECT_EQ(std::get<CommandLine>(parse({"menu"})).command, "menu");
  const auto opening = std::get<CommandLine>(parse({"mine.json", "menu.json"}));
  EXPECT_EQ(opening.command, "");
  EXPECT_EQ(opening.files, (std::vector<std::filesystem::path>{"mine.json", "menu.json"}));
}

TEST(CommandLineTest, WhatCannotBeMeantIsRefusedAndHelpIsNoFault) {
  EXPECT_EQ(std::get<CommandLineExit>(parse({"--abbreviations", "perhaps"})).status, 2);
  EXPECT_EQ(std::get<CommandLineExit>(parse({"--nonsense"})).status, 2);
  EXPECT_EQ(std::get<CommandLineExit>(parse({"menu", "quit"})).status, 2);
  EXPECT_EQ(std::get<CommandLineExit>(parse({"--help"})).status, 0);
  EXPECT_EQ(std::get<CommandLineExit>(parse({"--version"})).status, 0);
}

}  // namespace
}  // namespace quorlo
