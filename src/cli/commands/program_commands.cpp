#include "cli/commands/commands.h"
#include "cli/definition/command_parser.h"

namespace quorlo {

void addProgramCommands(CommandParser& parser) {
  using enum CommandParser::Json;
  parser.addProgramCommand("menu", "Open the menu of the running Quorlo, to be bound to a key", none);
  parser.addProgramCommand("quit", "Quit the running Quorlo", none);
  parser.addProgramCommand("status", "Say what the running Quorlo does", offered);
  parser.addProgramCommand("doctor", "Look for what keeps Quorlo from working, and say how to mend it",
                           offered);
}

}  // namespace quorlo
