#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/library/snippet_json.h"
#include "cli/library/snippet_names.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

// Without its abbreviation where another snippet has that now.
void restore(CommandSession& session, const ManagedObjectContext& library, QLSnippet& snippet) {
  if (const auto other = library.otherLiveSnippet(snippet.abbreviation(), snippet)) {
    session.note("The abbreviation \"" + toUtf8(snippet.abbreviation()) + "\" belongs to \"" +
                 toUtf8(other->displayTitle()) + "\" now; \"" + toUtf8(snippet.displayTitle()) +
                 "\" comes back without it.");
    snippet.setAbbreviation({});
  }
  snippet.restoreFromTrash();
}

Result<ExitStatus> restore(CommandSession& session, const std::vector<std::string>& names) {
  const auto library = session.openLibrary();
  if (!library) return library.error();
  const auto snippets = snippetsNamed(*library.value(), names, Among::trash);
  if (!snippets) return snippets.error();
  for (const auto& each : snippets.value()) restore(session, *library.value(), *each);
  if (const auto status = library.value()->save(); !status) return status.error();
  if (session.json()) {
    session.printJson(snippetsJson(snippets.value()));
  } else {
    for (const auto& each : snippets.value()) session.out().write("Restored " + inOneLine(*each) + "\n");
  }
  return ExitStatus::done;
}

}  // namespace

void addRestoreCommand(CommandParser& parser) {
  const auto names = std::make_shared<std::vector<std::string>>();
  auto& command = parser.add("restore", "Take snippets back out of the trash",
                             [names](CommandSession& session) { return restore(session, *names); });
  command.addTexts("snippets", *names, kSnippetNameHelp, "TRASHED").required();
  command.setFooter("A snippet whose abbreviation another one has meanwhile comes back without it.");
}

}  // namespace quorlo
