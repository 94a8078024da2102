#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace quorlo {

// What the user asked for on the command line.
struct CommandLine {
  std::optional<std::filesystem::path> library;
  std::optional<bool> abbreviations;

  // `quorlo --abbreviations on` alone changes the setting, for a running Quorlo too, and ends.
  bool onlyChangesSettings() const { return abbreviations && !library; }
};

// What was printed instead (help, version or a complaint), and the exit status.
struct CommandLineExit {
  int status;
};

std::variant<CommandLine, CommandLineExit> parseCommandLine(int argc, const char* const* argv);

}  // namespace quorlo
