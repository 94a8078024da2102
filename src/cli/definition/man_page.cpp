#include "cli/definition/man_page.h"

#include "cli/command_texts.h"
#include "cli/definition/arguments.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <sstream>
#include <string_view>
#include <vector>

namespace quorlo {
namespace {

// Hyphens are meant to be typed, and a dot or apostrophe at the beginning of a line would be a request.
std::string escaped(std::string_view text) {
  std::string roff;
  for (const char each : text) {
    if (each == '\\') {
      roff += "\\e";
    } else if (each == '-') {
      roff += "\\-";
    } else if ((each == '.' || each == '\'') && (roff.empty() || roff.back() == '\n')) {
      roff += "\\&";
      roff += each;
    } else {
      roff += each;
    }
  }
  return roff;
}

std::string bold(std::string_view text) {
  return "\\fB" + escaped(text) + "\\fR";
}
std::string italic(std::string_view text) {
  return "\\fI" + escaped(text) + "\\fR";
}

// Paragraphs are filled; lines that begin with blanks are examples and stay as they are.
std::string paragraphs(const std::string& text) {
  std::string roff;
  std::istringstream lines(text);
  bool isExample = false;
  for (std::string line; std::getline(lines, line);) {
    const bool isIndented = line.starts_with("  ");
    if (isIndented != isExample) roff += isIndented ? ".PP\n.nf\n" : ".fi\n";
    isExample = isIndented;
    roff += line.empty() ? ".PP\n" : escaped(isIndented ? line.substr(2) : line) + "\n";
  }
  return roff + (isExample ? ".fi\n" : "");
}

std::string typeOf(const CLI::Option& option) {
  return takesValue(option) ? italic(option.get_type_name()) : std::string();
}

// "-f, --folder FOLDER"
std::string heading(const CLI::Option& option) {
  std::string names;
  for (const auto& each : option.get_snames()) names += (names.empty() ? "" : ", ") + bold("-" + each);
  for (const auto& each : option.get_lnames()) names += (names.empty() ? "" : ", ") + bold("--" + each);
  if (names.empty()) return italic(option.get_name());
  const auto type = typeOf(option);
  return type.empty() ? names : names + " " + type;
}

std::string options(const CLI::App& command) {
  std::string roff;
  for (const auto* each : command.get_options()) {
    if (each == command.get_help_ptr() || each->get_group().empty()) continue;
    roff += ".TP\n" + heading(*each) + "\n" + escaped(each->get_description()) + ".\n";
  }
  return roff;
}

// "quorlo list [OPTION...]", "quorlo show [OPTION...] snippet"
std::string synopsis(const CLI::App& command, const std::string& name) {
  auto line = bold(name) + " [" + italic("OPTION") + "...]";
  for (const auto* each : command.get_options()) {
    if (!each->get_positional()) continue;
    const auto argument = italic(each->get_name()) + (each->get_expected_max() > 1 ? "..." : "");
    line += each->get_required() ? " " + argument : " [" + argument + "]";
  }
  return line;
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* each) { return !each->get_group().empty(); });
}

void describe(const CLI::App& command, const std::string& parentName, std::string& roff) {
  const auto name = parentName + " " + command.get_name();
  const auto inner = commandsOf(command);
  if (inner.empty()) {
    roff += ".SS " + synopsis(command, name) + "\n" + escaped(command.get_description()) + ".\n";
    roff += options(command);
    if (!command.get_footer().empty()) roff += ".PP\n" + paragraphs(command.get_footer());
  }
  for (const auto* each : inner) describe(*each, name, roff);
}

}  // namespace

std::string manPage(const CLI::App& app, const std::string& version) {
  auto roff = fmt::format(".TH QUORLO 1 \"\" \"quorlo {}\" \"User Commands\"\n", version);
  roff += ".SH NAME\nquorlo \\- expands abbreviations as you type\n";
  roff += ".SH SYNOPSIS\n" + synopsis(app, "quorlo") + "\n.br\n" + bold("quorlo") + " " + italic("COMMAND") +
          " [" + italic("OPTION") + "...] [" + italic("ARGUMENT") + "...]\n";
  roff +=
      ".SH DESCRIPTION\n" + paragraphs(app.get_description() + "\n\n" + kStartText + "\n\n" + kLibraryText);
  roff += ".SH OPTIONS\n" + options(app);
  roff += ".SH COMMANDS\n";
  for (const auto* each : commandsOf(app)) describe(*each, "quorlo", roff);
  roff += ".SH EXIT STATUS\n";
  for (const auto& [status, meaning] : kExitStatusTexts) {
    roff += fmt::format(".TP\n.B {}\n{}.\n", status, escaped(meaning));
  }
  roff += ".SH FILES\n";
  for (const auto& [file, meaning] : kFileTexts) {
    roff += ".TP\n" + italic(file) + "\n" + escaped(meaning) + ".\n";
  }
  return roff;
}

}  // namespace quorlo
