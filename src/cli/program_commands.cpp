#include "cli/command_parser.h"
#include "cli/commands.h"

namespace quorlo {

void addProgramCommands(CommandParser& parser) {
  parser.addProgramCommand("menu", "Open the menu of the running Quorlo, to be bound to a key");
  parser.addProgramCommand("quit", "Quit the running Quorlo");
  parser.addProgramCommand("status", "Say what the running Quorlo does");
  parser.addProgramCommand("doctor", "Look for what keeps Quorlo from working, and say how to mend it");
}

}  // namespace quorlo
