#include "cli/definition/help_text.h"

#include "cli/definition/command_definition.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <vector>

namespace quorlo {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kNameColumns = 30;
constexpr std::size_t kDescriptionColumns = kColumns - kNameColumns;

// The texts of the help are ASCII.
std::string wrapped(const std::string& paragraph, std::size_t columns) {
  std::istringstream words(paragraph);
  std::string text;
  std::size_t column = 0;
  for (std::string word; words >> word;) {
    if (column > 0 && column + 1 + word.size() > columns) {
      text += '\n';
      column = 0;
    } else if (column > 0) {
      text += ' ';
      ++column;
    }
    text += word;
    column += word.size();
  }
  return text;
}

// A name and what it means, side by side.
std::string entry(const std::string& name, const std::string& description) {
  const auto start = "  " + name;
  auto text = start.size() < kNameColumns ? fmt::format("{:<{}}", start, kNameColumns)
                                          : start + "\n" + std::string(kNameColumns, ' ');
  for (const char each : wrapped(description, kDescriptionColumns)) {
    text += each;
    if (each == '\n') text.append(kNameColumns, ' ');
  }
  return text + "\n";
}

std::string entry(const OptionDefinition& option) {
  if (option.isArgument())
    return entry(option.argument + (option.isRepeatable ? "..." : ""), option.description);
  std::string names;
  for (const auto& each : option.names) names.append(names.empty() ? "" : ",").append(each);
  return entry(option.isFlag() ? names : names + " " + option.type, option.description);
}

std::string usage(const CommandDefinition& command) {
  auto line = "Usage: " + command.fullName() + " [OPTIONS]";
  for (const auto& each : command.options()) {
    if (!each->isArgument()) continue;
    const auto name = each->argument + (each->isRepeatable ? "..." : "");
    line += each->isRequired ? " " + name : " [" + name + "]";
  }
  if (command.needsCommand()) return line + " COMMAND\n";
  return line + (command.commands().empty() ? "\n" : " [COMMAND]\n");
}

std::string arguments(const CommandDefinition& command) {
  std::string entries;
  for (const auto& each : command.options()) {
    if (each->isArgument()) entries += entry(*each);
  }
  return entries.empty() ? "" : "\nArguments:\n" + entries;
}

// The headings in the order in which they first appear, each with its entries.
class Sections {
 public:
  void add(const std::string& heading, const std::string& entry) {
    auto found = std::ranges::find(sections_, heading, &Section::heading);
    if (found == sections_.end()) found = sections_.insert(found, {heading, {}});
    found->entries += entry;
  }

  std::string text() const {
    std::string text;
    for (const auto& [heading, entries] : sections_) text += fmt::format("\n{}:\n{}", heading, entries);
    return text;
  }

 private:
  struct Section {
    std::string heading;
    std::string entries;
  };
  std::vector<Section> sections_;
};

}  // namespace

std::string wrappedParagraphs(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    result += (line.starts_with("  ") ? line : wrapped(line, kColumns)) + "\n";
  }
  return result;
}

std::string helpText(const CommandDefinition& command) {
  Sections sections;
  for (const auto& each : command.options()) {
    if (!each->isArgument()) sections.add(each->section, entry(*each));
  }
  for (const auto& each : command.commands()) {
    if (!each->isHidden()) sections.add(each->section(), entry(each->name(), each->description()));
  }
  auto text =
      wrappedParagraphs(command.description()) + usage(command) + arguments(command) + sections.text();
  if (!command.footer().empty()) text += "\n" + wrappedParagraphs(command.footer());
  return text;
}

}  // namespace quorlo
