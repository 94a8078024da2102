#include "cli/definition/command_parser.h"

#include "cli/command_output.h"
#include "cli/command_texts.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/help_text.h"
#include "cli/definition/parse_words.h"
#include "cli/terminal_text.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

CommandLineExit print(std::string_view text) {
  CommandOutput output(STDOUT_FILENO);
  output.write(text);
  if (const auto written = output.finish(); !written) {
    std::cerr << "quorlo: " << written.error().message << "\n";
    return {ExitStatus::failed};
  }
  return {ExitStatus::done};
}

CommandLineExit complain(const CommandDefinition& command, const std::string& fault) {
  std::cerr << "quorlo: " << printable(fault, LineBreaks::shown) << "\nTry: " << command.fullName()
            << " --help\n";
  return {ExitStatus::wrongUsage};
}

// A name with neither an ending nor a folder, that no file has.
bool isMistypedCommand(const std::string& word) {
  std::error_code failure;
  return word.find_first_of("./") == std::string::npos && !std::filesystem::exists(word, failure);
}

// It may stand before the command.
bool offersJson(const CommandDefinition& command) {
  return command.hasParent() && command.optionNamed("--json") != nullptr;
}

}  // namespace

CommandParser::CommandParser()
    : root_(std::make_unique<CommandDefinition>(
          "quorlo", "Quorlo expands abbreviations as you type, in any application.")) {
  root_->setFooter(helpFooter());
  root_->addFlag("-V,--version", asksForVersion_, "Display program version information and exit");
  root_->addFiles("files", files_, "Files to open: libraries to take snippets from");
  root_->addFile("--library", library_, "Take the snippets of this JSON file into the library");
  root_->addChoice("--abbreviations", abbreviations_, {"on", "off"},
                   "Switch the expansion of abbreviations on or off; alone, changes the setting and ends");
  root_->addFlag("--json", json_, "For a command, which may also have it behind its name");

  section_ = "Snippets";
  addListCommand(*this);
  addSearchCommand(*this);
  addShowCommand(*this);
  addExpandCommand(*this);
  addAddCommand(*this);
  addEditCommand(*this);
  addRemoveCommand(*this);
  addRestoreCommand(*this);
  section_ = "Library";
  addImportCommand(*this);
  addExportCommand(*this);
  addBackupCommand(*this);
  addStatsCommand(*this);
  addRepairCommand(*this);
  section_ = "Program";
  addSettingsCommands(*this);
  addProgramCommands(*this);
  section_ = "Shell";
  addCompletionCommands(*this);
  addHelpCommand(*this);
  addManCommand(*this);
}

CommandParser::~CommandParser() = default;

CommandDefinition& CommandParser::add(const std::string& name, const std::string& summary,
                                      CommandAction action, Json json) {
  return add(*root_, name, summary, std::move(action), json).setSection(section_);
}

CommandDefinition& CommandParser::add(CommandDefinition& group, const std::string& name,
                                      const std::string& summary, CommandAction action, Json json) {
  auto& command = group.addCommand(name, summary);
  if (json == Json::offered) command.addFlag("--json", json_, "Print the result as one JSON document");
  actions_.emplace(&command, std::move(action));
  return command;
}

CommandDefinition& CommandParser::addGroup(const std::string& name, const std::string& summary) {
  return root_->addCommand(name, summary).setSection(section_);
}

void CommandParser::addProgramCommand(const std::string& name, const std::string& summary, Json json) {
  actions_.erase(&add(name, summary, {}, json));
}

CommandLine CommandParser::parse(int argc, const char* const* argv) {
  const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  const auto parsed = parseWords(*root_, words);
  if (parsed.asksForHelp) return print(helpText(*parsed.command));
  if (!parsed.fault.empty()) return complain(*parsed.command, parsed.fault);
  if (asksForVersion_) return print("quorlo " QUORLO_VERSION "\n");
  if (json_ && !offersJson(*parsed.command)) return complain(*parsed.command, "not expected: --json");
  return request(*parsed.command);
}

CommandLine CommandParser::request(const CommandDefinition& command) const {
  if (const auto found = actions_.find(&command); found != actions_.end()) {
    return CommandRequest{found->second, json_};
  }
  if (&command != root_.get()) return ProgramRequest{command.name(), json_};
  if (const auto word = std::ranges::find_if(files_, isMistypedCommand); word != files_.end()) {
    return complain(command, "There is neither a command nor a file \"" + *word + "\".");
  }
  return startRequest();
}

StartRequest CommandParser::startRequest() const {
  StartRequest start{{files_.begin(), files_.end()}, library_, {}};
  if (!abbreviations_.empty()) start.abbreviations = abbreviations_ == "on";
  return start;
}

}  // namespace quorlo
