#pragma once

#include <string>

namespace quorlo {

class CommandDefinition;

// The manual page of the whole command line, for man(1): its text in the markup of groff_man(7), ASCII only.
std::string manPage(const CommandDefinition& program, const std::string& version);

}  // namespace quorlo
