#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/definition/man_page.h"

namespace quorlo {

void addManCommand(CommandParser& parser) {
  auto& command = parser.add(
      "man", "Print the manual page, for the build to install",
      [&parser](CommandSession& session) -> Result<ExitStatus> {
        session.out().write(manPage(parser.definition(), QUORLO_VERSION));
        return ExitStatus::done;
      },
      CommandParser::Json::none);
  command.setSection("");
}

}  // namespace quorlo
