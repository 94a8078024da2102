#include "program/command_line.h"

#include <CLI/CLI.hpp>

namespace quorlo {

std::variant<CommandLine, CommandLineExit> parseCommandLine(int argc, const char* const* argv) {
  CLI::App app{"Quorlo expands abbreviations as you type, in any application.", "quorlo"};
  app.set_version_flag("--version", "quorlo " QUORLO_VERSION);

  CommandLine result;
  std::string library;
  std::string abbreviations;
  app.add_option("--library", library, "Read the snippets from this JSON file")->type_name("FILE");
  app.add_option("--abbreviations", abbreviations,
                 "Switch the expansion of abbreviations on or off; alone, changes the setting and ends")
      ->check(CLI::IsMember({"on", "off"}))
      ->type_name("on|off");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return CommandLineExit{app.exit(problem) == 0 ? 0 : 2};
  }
  if (!library.empty()) result.library = library;
  if (!abbreviations.empty()) result.abbreviations = abbreviations == "on";
  return result;
}

}  // namespace quorlo
