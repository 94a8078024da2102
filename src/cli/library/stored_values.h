#pragma once

#include "cli/definition/completion.h"

#include <string_view>
#include <vector>

namespace quorlo {

class CommandSession;

// What completion offers for a type of argument out of the library. Says nothing where that fails: a
// shell's line is being typed.
std::vector<Candidate> storedValues(CommandSession& session, std::string_view type);

}  // namespace quorlo
