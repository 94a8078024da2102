#include "cli/definition/man_page.h"

#include "cli/command_texts.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/help_topics.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
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

// "-f, --folder FOLDER"
std::string heading(const OptionDefinition& option) {
  if (option.isArgument()) return italic(option.argument);
  std::string names;
  for (const auto& each : option.names) names += (names.empty() ? "" : ", ") + bold(each);
  return option.isFlag() ? names : names + " " + italic(option.type);
}

std::string options(const CommandDefinition& command) {
  std::string roff;
  for (const auto& each : command.options()) {
    if (!command.isHelp(*each)) roff += ".TP\n" + heading(*each) + "\n" + escaped(each->description) + ".\n";
  }
  return roff;
}

// "quorlo list [OPTION...]", "quorlo show [OPTION...] snippet"
std::string synopsis(const CommandDefinition& command) {
  auto line = bold(command.fullName()) + " [" + italic("OPTION") + "...]";
  for (const auto& each : command.options()) {
    if (!each->isArgument()) continue;
    const auto argument = italic(each->argument) + (each->isRepeatable ? "..." : "");
    line += each->isRequired ? " " + argument : " [" + argument + "]";
  }
  return line;
}

std::string upperCase(std::string_view name) {
  std::string heading(name);
  std::ranges::transform(heading, heading.begin(), [](unsigned char c) { return std::toupper(c); });
  return heading;
}

void describe(const CommandDefinition& command, std::string& roff) {
  if (command.isHidden()) return;
  if (command.commands().empty()) {
    roff += ".SS " + synopsis(command) + "\n" + escaped(command.description()) + ".\n";
    roff += options(command);
    if (!command.footer().empty()) roff += ".PP\n" + paragraphs(command.footer());
  }
  for (const auto& each : command.commands()) describe(*each, roff);
}

}  // namespace

std::string manPage(const CommandDefinition& program, const std::string& version) {
  auto roff = fmt::format(".TH QUORLO 1 \"\" \"quorlo {}\" \"User Commands\"\n", version);
  roff += ".SH NAME\nquorlo \\- expands abbreviations as you type\n";
  roff += ".SH SYNOPSIS\n" + synopsis(program) + "\n.br\n" + bold("quorlo") + " " + italic("COMMAND") + " [" +
          italic("OPTION") + "...] [" + italic("ARGUMENT") + "...]\n";
  roff +=
      ".SH DESCRIPTION\n" + paragraphs(program.description() + "\n\n" + kStartText + "\n\n" + kLibraryText);
  roff += ".SH OPTIONS\n" + options(program);
  roff += ".SH COMMANDS\n";
  for (const auto& each : program.commands()) describe(*each, roff);
  for (const auto& [name, text] : helpTopics()) {
    roff += ".SH " + upperCase(name) + "\n" + paragraphs(text);
  }
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
