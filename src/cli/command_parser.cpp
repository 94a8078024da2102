#include "cli/command_parser.h"

#include "cli/command_output.h"
#include "cli/command_texts.h"
#include "cli/commands.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>
#include <sstream>
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

}  // namespace

CommandParser::CommandParser()
    : app_(std::make_unique<CLI::App>("Quorlo expands abbreviations as you type, in any application.",
                                      "quorlo")) {
  app_->set_version_flag("--version", "quorlo " QUORLO_VERSION);
  app_->footer(helpFooter());
  app_->require_subcommand(0, 1);
  app_->failure_message([](const CLI::App* app, const CLI::Error& error) {
    return std::string("quorlo: ") + error.what() + "\nTry: " + fullName(innermost(*app)) + " --help\n";
  });
  app_->add_option("files", files_, "Files to open: libraries to take snippets from")->type_name("FILE");
  app_->add_option("--library", library_, "Take the snippets of this JSON file into the library")
      ->type_name("FILE");
  app_->add_option("--abbreviations", abbreviations_,
                   "Switch the expansion of abbreviations on or off; alone, changes the setting and ends")
      ->check(CLI::IsMember({"on", "off"}))
      ->type_name("on|off");

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
  command.group(section_);
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

void CommandParser::addProgramCommand(const std::string& name, const std::string& summary) {
  auto& command = *app_->add_subcommand(name, summary);
  command.footer("");
  command.group(section_);
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
  if (&command != app_.get()) return ProgramRequest{command.get_name()};
  StartRequest start{{files_.begin(), files_.end()}, {}, {}};
  if (!library_.empty()) start.library = library_;
  if (!abbreviations_.empty()) start.abbreviations = abbreviations_ == "on";
  return start;
}

}  // namespace quorlo
