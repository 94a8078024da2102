#pragma once

#include "base/result.h"
#include "cli/exit_status.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quorlo {

class CommandDefinition;
class CommandSession;

// What a command does once its options are read. An error is said and makes the exit status 1.
using CommandAction = std::function<Result<ExitStatus>(CommandSession&)>;

// To start Quorlo, or to ask the one that runs.
struct StartRequest {
  std::vector<std::filesystem::path> files;
  std::optional<std::filesystem::path> library;
  std::optional<bool> abbreviations;

  // `quorlo --abbreviations on` alone changes the setting, for a running Quorlo too, and ends.
  bool onlyChangesSettings() const { return abbreviations && !library && files.empty(); }
};

// "menu", "quit", "status" or "doctor".
struct ProgramRequest {
  std::string command;
  bool json = false;
};

struct CommandRequest {
  CommandAction action;
  bool json = false;
};

// What was printed instead (help, version or a complaint), and the exit status.
struct CommandLineExit {
  ExitStatus status;
};

using CommandLine = std::variant<StartRequest, ProgramRequest, CommandRequest, CommandLineExit>;

// The one definition of the command line: parsing, help, man page and completion come from it. Outlives the
// actions that it gives.
class CommandParser {
 public:
  // With every command (commands.h).
  CommandParser();
  CommandParser(const CommandParser&) = delete;
  CommandParser& operator=(const CommandParser&) = delete;
  ~CommandParser();

  CommandLine parse(int argc, const char* const* argv);

  const CommandDefinition& definition() const { return *root_; }

  // For the commands to define themselves.

  enum class Json { offered, none };
  // Options are added to what is returned, their values kept in what the action holds.
  CommandDefinition& add(const std::string& name, const std::string& summary, CommandAction action,
                         Json json = Json::offered);
  CommandDefinition& add(CommandDefinition& group, const std::string& name, const std::string& summary,
                         CommandAction action, Json json = Json::offered);
  CommandDefinition& addGroup(const std::string& name, const std::string& summary);
  // One that the program carries out itself.
  void addProgramCommand(const std::string& name, const std::string& summary, Json json);

 private:
  CommandLine request(const CommandDefinition& command) const;
  StartRequest startRequest() const;

  std::unique_ptr<CommandDefinition> root_;
  std::map<const CommandDefinition*, CommandAction> actions_;
  std::string section_;  // of the help, for the commands that are being added
  std::vector<std::string> files_;
  std::optional<std::string> library_;
  std::string abbreviations_;
  bool asksForVersion_ = false;
  bool json_ = false;
};

}  // namespace quorlo
