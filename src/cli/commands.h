#pragma once

namespace quorlo {

class CommandParser;

// One function for each command, in the order in which help, man page and completion list them.
void addListCommand(CommandParser& parser);
void addProgramCommands(CommandParser& parser);

}  // namespace quorlo
