#pragma once

#include "cli/definition/command_parser.h"

namespace quorlo {

// Carries out a command on the library, the settings or files: without a display, session bus or Qt
// application. The exit status.
int runCommand(const CommandRequest& request);

}  // namespace quorlo
