#pragma once

#include "base/result.h"

#include <optional>
#include <string>

namespace quorlo {

class CommandDefinition;
class CommandSession;

// The text of a snippet as the user gives it.
struct SnippetTextSource {
  std::optional<std::string> text;  // "-" for standard input
  std::optional<std::string> file;

  bool isGiven() const { return text || file; }
};

// --text and --file, of which one at most may be given.
void addTextSource(CommandDefinition& command, SnippetTextSource& source);

// The text in UTF-8, ill-formed bytes and NUL characters being refused, with line feeds alone between lines.
// What was read loses the one line feed at its end that editors and `echo` add. Absent when nothing is given.
Result<std::optional<std::u16string>> snippetText(CommandSession& session, const SnippetTextSource& source);

}  // namespace quorlo
