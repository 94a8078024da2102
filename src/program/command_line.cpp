#include "program/command_line.h"

#include <CLI/CLI.hpp>

namespace quorlo {

std::variant<CommandLine, CommandLineExit> parseCommandLine(int argc, const char* const* argv) {
  CLI::App app{"Quorlo expands abbreviations as you type, in any application.", "quorlo"};
  app.set_version_flag("--version", "quorlo " QUORLO_VERSION);
  app.footer("Without a command, starts Quorlo, or brings up the one that runs.");
  app.require_subcommand(0, 1);

  CommandLine result;
  std::vector<std::string> files;
  std::string library;
  std::string abbreviations;
  app.add_option("files", files, "Files to open: libraries to take snippets from")->type_name("FILE");
  app.add_option("--library", library, "Take the snippets of this JSON file into the library")
      ->type_name("FILE");
  app.add_option("--abbreviations", abbreviations,
                 "Switch the expansion of abbreviations on or off; alone, changes the setting and ends")
      ->check(CLI::IsMember({"on", "off"}))
      ->type_name("on|off");
  app.add_subcommand("menu", "Open the menu of the running Quorlo, to be bound to a key");
  app.add_subcommand("quit", "Quit the running Quorlo");
  app.add_subcommand("status", "Say what the running Quorlo does");
  app.add_subcommand("doctor", "Look for what keeps Quorlo from working, and say how to mend it");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return CommandLineExit{app.exit(problem) == 0 ? 0 : 2};
  }
  if (const auto commands = app.get_subcommands(); !commands.empty())
    result.command = commands.front()->get_name();
  result.files.assign(files.begin(), files.end());
  if (!library.empty()) result.library = library;
  if (!abbreviations.empty()) result.abbreviations = abbreviations == "on";
  return result;
}

}  // namespace quorlo
