#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quorlo {

// What the user asked for on the command line.
struct CommandLine {
  std::string command;  // "menu", "quit", "status" or "doctor"; empty to start Quorlo
  std::vector<std::filesystem::path> files;
  std::optional<std::filesystem::path> library;
  std::optional<bool> abbreviations;

  // `quorlo --abbreviations on` alone changes the setting, for a running Quorlo too, and ends.
  bool onlyChangesSettings() const { return command.empty() && abbreviations && !library && files.empty(); }
};

// What was printed instead (help, version or a complaint), and the exit status.
struct CommandLineExit {
  int status;
};

std::variant<CommandLine, CommandLineExit> parseCommandLine(int argc, const char* const* argv);

}  // namespace quorlo
