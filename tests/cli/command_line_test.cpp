#include "cli/definition/command_parser.h"

#include <gtest/gtest.h>

#include <vector>

namespace quorlo {
namespace {

CommandLine parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "quorlo");
  return CommandParser().parse(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLineTest, ASwitchAloneChangesTheSettingAndWithALibraryRuns) {
  const auto alone = std::get<StartRequest>(parse({"--abbreviations", "on"}));
  EXPECT_TRUE(alone.onlyChangesSettings());
  EXPECT_EQ(alone.abbreviations, true);
  const auto running = std::get<StartRequest>(parse({"--abbreviations=off", "--library", "mine.json"}));
  EXPECT_FALSE(running.onlyChangesSettings());
  EXPECT_EQ(running.abbreviations, false);
  EXPECT_EQ(running.library, "mine.json");
  EXPECT_FALSE(std::get<StartRequest>(parse({})).onlyChangesSettings());
}

TEST(CommandLineTest, TellsCommandsFromFiles) {
  EXPECT_EQ(std::get<ProgramRequest>(parse({"menu"})).command, "menu");
  EXPECT_TRUE(std::get<ProgramRequest>(parse({"status", "--json"})).json);
  EXPECT_TRUE(std::get<CommandRequest>(parse({"list", "--json"})).json);
  EXPECT_TRUE(std::get<CommandRequest>(parse({"--json", "list", "--folder", "--trash"})).json);
  const auto opening = std::get<StartRequest>(parse({"mine.json", "menu.json"}));
  EXPECT_EQ(opening.files, (std::vector<std::filesystem::path>{"mine.json", "menu.json"}));
}

TEST(CommandLineTest, WhatCannotBeMeantIsRefusedAndHelpIsNoFault) {
  const auto status = [](std::vector<const char*> arguments) {
    return std::get<CommandLineExit>(parse(std::move(arguments))).status;
  };
  EXPECT_EQ(status({"--abbreviations", "perhaps"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"--nonsense"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"menu", "quit"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"lst"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"--json"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"--json", "quit"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"list", "--json=yes"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"settings"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"show"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"list", "--folder"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"list", "--folder=a", "--trash"}), ExitStatus::wrongUsage);
  EXPECT_EQ(status({"export", "--bogus", "--help"}), ExitStatus::done);
  EXPECT_EQ(status({"-V"}), ExitStatus::done);
  EXPECT_EQ(status({"--help"}), ExitStatus::done);
  EXPECT_EQ(status({"--version"}), ExitStatus::done);
}

}  // namespace
}  // namespace quorlo
