#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/definition/help_text.h"
#include "cli/definition/help_topics.h"

#include <memory>

namespace quorlo {
namespace {

Result<ExitStatus> help(CommandSession& session, const CommandDefinition& program,
                        const std::vector<std::string>& words) {
  const auto* command = &program;
  for (const auto& each : words) {
    const auto* const inner = command->commandNamed(each);
    if (inner == nullptr && words.size() == 1) {
      if (const auto* const topic = helpTopic(each)) {
        session.out().write(wrappedParagraphs(topic->text));
        return ExitStatus::done;
      }
    }
    if (inner == nullptr) {
      session.note("There is no command \"" + each + "\" to help with. To see which there are: quorlo help");
      return ExitStatus::wrongUsage;
    }
    command = inner;
  }
  session.out().write(helpText(*command));
  return ExitStatus::done;
}

}  // namespace

void addHelpCommand(CommandParser& parser) {
  const auto words = std::make_shared<std::vector<std::string>>();
  auto& command = parser.add(
      "help", "Explain a command, or how macros or tables are written",
      [&parser, words](CommandSession& session) { return help(session, parser.definition(), *words); },
      CommandParser::Json::none);
  command.addTexts("command", *words, "The command; or macros, or tables", "COMMAND");
}

}  // namespace quorlo
