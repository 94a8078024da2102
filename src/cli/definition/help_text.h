#pragma once

#include <string>

namespace quorlo {

class CommandDefinition;

// What --help prints: lines of at most 80 columns. Lines of a footer that begin with blanks stay as they are.
std::string helpText(const CommandDefinition& command);

// Its paragraphs in such lines, too.
std::string wrappedParagraphs(const std::string& text);

}  // namespace quorlo
