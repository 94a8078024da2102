#pragma once

#include <span>
#include <string>

namespace quorlo {

class CommandDefinition;

// What the words of a command line ask for.
struct ParsedWords {
  const CommandDefinition* command = nullptr;  // the innermost one that they name
  bool asksForHelp = false;
  std::string fault;  // in their use; empty where there is none. Help is asked for all the same.
};

// Gives the options their values, from the first word behind the program's name on. A command is the first
// word that is no option. "--option=" has an empty value, an option that takes a value takes the next word
// whatever it is, "--" ends the options, and short flags may stand together ("-ny").
ParsedWords parseWords(const CommandDefinition& root, std::span<const std::string> words);

}  // namespace quorlo
