#include "cli/definition/command_parser.h"

#include "cli/command_output.h"
#include "cli/command_texts.h"
#include "cli/commands/commands.h"
#include "cli/definition/arguments.h"
#include "cli/definition/help_formatter.h"
#include "cli/terminal_text.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

// The command that the words have led to.
const CLI::App& innermost(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  return chosen.empty() ? app : innermost(*chosen.front());
}

std::string fullName(const CLI::App& app) {
  return app.get_parent() == nullptr ? app.get_name() : fullName(*app.get_parent()) + " " + app.get_name();
}

CommandLineExit say(const CLI::App& app, const CLI::ParseError& outcome) {
  std::ostringstream text;
  std::ostringstream complaint;
  if (app.exit(outcome, text, complaint) != 0) {
    std::cerr << complaint.str();
    return {ExitStatus::wrongUsage};
  }
  CommandOutput output(STDOUT_FILENO);
  output.write(text.str());
  if (const auto written = output.finish(); !written) {
    std::cerr << "quorlo: " << written.error().message << "\n";
    return {ExitStatus::failed};
  }
  return {ExitStatus::done};
}

// A name with neither an ending nor a folder, that no file has.
bool isMistypedCommand(const std::string& word) {
  std::error_code failure;
  return word.find_first_of("./") == std::string::npos && !std::filesystem::exists(word, failure);
}

}  // namespace

CommandParser::CommandParser()
    : app_(std::make_unique<CLI::App>("Quorlo expands abbreviations as you type, in any application.",
                                      "quorlo")) {
  app_->set_version_flag("--version", "quorlo " QUORLO_VERSION);
  app_->formatter(std::make_shared<HelpFormatter>());
  app_->footer(helpFooter());
  app_->require_subcommand(0, 1);
  app_->failure_message([](const CLI::App* app, const CLI::Error& error) {
    return std::string("quorlo: ") + error.what() + "\nTry: " + fullName(innermost(*app)) + " --help\n";
  });
  app_->add_option("files", files_, "Files to open: libraries to take snippets from")->type_name("FILE");
  app_->add_option("--library", library_, "Take the snippets of this JSON file into the library")
      ->type_name("FILE");
  addChoice(*app_, "--abbreviations", abbreviations_, {"on", "off"},
            "Switch the expansion of abbreviations on or off; alone, changes the setting and ends");

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
  addStatsCommand(*this);
  section_ = "Program";
  addSettingsCommands(*this);
  addProgramCommands(*this);
  section_ = "Shell";
  addCompletionCommands(*this);
  addManCommand(*this);
}

CommandParser::~CommandParser() = default;

CLI::App& CommandParser::add(const std::string& name, const std::string& summary, CommandAction action,
                             Json json) {
  return add(*app_, name, summary, std::move(action), json);
}

CLI::App& CommandParser::add(CLI::App& group, const std::string& name, const std::string& summary,
                             CommandAction action, Json json) {
  auto& command = *group.add_subcommand(name, summary);
  command.footer("");  // that of the whole is passed on
  command.group(&group == app_.get() ? section_ : "Commands");
  if (json == Json::offered) command.add_flag("--json", json_, "Print the result as one JSON document");
  actions_.emplace(&command, std::move(action));
  return command;
}

CLI::App& CommandParser::addGroup(const std::string& name, const std::string& summary) {
  auto& group = *app_->add_subcommand(name, summary);
  group.footer("");
  group.group(section_);
  group.require_subcommand(1);
  return group;
}

void CommandParser::addProgramCommand(const std::string& name, const std::string& summary, Json json) {
  actions_.erase(&add(name, summary, {}, json));
}

CommandLine CommandParser::parse(int argc, const char* const* argv) {
  try {
    app_->parse(argc, argv);
  } catch (const CLI::ParseError& outcome) {
    return say(*app_, outcome);
  }
  return request();
}

CommandLine CommandParser::request() const {
  const auto& command = innermost(*app_);
  if (const auto found = actions_.find(&command); found != actions_.end()) {
    return CommandRequest{found->second, json_};
  }
  if (&command != app_.get()) return ProgramRequest{command.get_name(), json_};
  if (const auto word = std::ranges::find_if(files_, isMistypedCommand); word != files_.end()) {
    std::cerr << "quorlo: There is neither a command nor a file \"" << printable(*word, LineBreaks::shown)
              << "\".\nTry: quorlo --help\n";
    return CommandLineExit{ExitStatus::wrongUsage};
  }
  StartRequest start{{files_.begin(), files_.end()}, {}, {}};
  if (!library_.empty()) start.library = library_;
  if (!abbreviations_.empty()) start.abbreviations = abbreviations_ == "on";
  return start;
}

}  // namespace quorlo
