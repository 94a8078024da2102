#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/definition/completion.h"
#include "cli/library/stored_values.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

constexpr std::array<std::pair<std::string_view, Shell>, 3> kShells{
    {{"bash", Shell::bash}, {"zsh", Shell::zsh}, {"fish", Shell::fish}}};

Result<ExitStatus> printScript(CommandSession& session, std::string_view shell) {
  const auto* const found = std::ranges::find(kShells, shell, &std::pair<std::string_view, Shell>::first);
  session.out().write(completionScript(found->second));
  return ExitStatus::done;
}

// The first line says whether names of files fit, too; each further one is a candidate and what it means.
Result<ExitStatus> printCompletion(CommandSession& session, const CommandDefinition& program,
                                   const std::vector<std::string>& words) {
  const auto completion =
      complete(program, words, [&](std::string_view type) { return storedValues(session, type); });
  session.out().write(completion.takesFile ? "files\n" : "values\n");
  for (const auto& [text, description] : completion.candidates) {
    session.out().write(text + "\t" + description + "\n");
  }
  return ExitStatus::done;
}

}  // namespace

void addCompletionCommands(CommandParser& parser) {
  const auto shell = std::make_shared<std::string>();
  auto& script = parser.add(
      "completion", "Print what makes a shell complete commands, options, snippets and folders",
      [shell](CommandSession& session) { return printScript(session, *shell); }, CommandParser::Json::none);
  script.addChoice("shell", *shell, {"bash", "zsh", "fish"}, "Which shell").required();
  script.setFooter(
      "Installed packages have it in place already. Else, for the present shell:\n\n"
      "  source <(quorlo completion bash)");

  const auto words = std::make_shared<std::vector<std::string>>();
  auto& asked = parser.add(
      "complete", "Say what may stand for the last word, for the scripts of the shells",
      [&parser, words](CommandSession& session) {
        return printCompletion(session, parser.definition(), *words);
      },
      CommandParser::Json::none);
  asked.addFiles("words", *words, "Those behind the name of the program");
  asked.setSection("");
}

}  // namespace quorlo
