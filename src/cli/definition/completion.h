#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class CommandDefinition;

struct Candidate {
  std::string text;
  std::string description;  // may be empty

  bool operator==(const Candidate&) const = default;
};

// What may stand in the place of the word that is being typed.
struct Completion {
  std::vector<Candidate> candidates;
  bool takesFile = false;  // names of files, too

  bool operator==(const Completion&) const = default;
};

// The values of a type of option that are kept somewhere: "SNIPPET", "FOLDER" and so on.
using StoredValues = std::function<std::vector<Candidate>(std::string_view type)>;

// `words` are those behind the program's name; the last one, which may be empty, is being typed.
Completion complete(const CommandDefinition& program, const std::vector<std::string>& words,
                    const StoredValues& stored);

enum class Shell { bash, zsh, fish };

// What makes the shell ask `quorlo complete`.
std::string_view completionScript(Shell shell);

}  // namespace quorlo
