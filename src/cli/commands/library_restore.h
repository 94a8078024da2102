#pragma once

#include "base/result.h"
#include "cli/exit_status.h"

#include <string>

namespace quorlo {

class CommandSession;

// The part of `quorlo restore` that replaces the whole library.

// Whether an argument has the form of a date, or is a file that holds a database.
bool namesLibrary(const std::string& name);

// `name` is a file, or the date of one of the rolling copies. Asks before anything is replaced, unless
// `isConfirmed`.
Result<ExitStatus> restoreLibrary(CommandSession& session, const std::string& name, bool isConfirmed);

}  // namespace quorlo
