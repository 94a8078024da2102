#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/library/snippet_json.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "store/upkeep/shared_abbreviations.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

Result<ExitStatus> repair(CommandSession& session) {
  const auto library = session.openLibrary(LibraryUse::changing);
  if (!library) return library.error();
  std::vector<std::shared_ptr<QLSnippet>> changed;
  std::string told;
  for (const auto& [oldest, others] : sharedAbbreviations(*library.value())) {
    for (const auto& each : others) {
      told += "\"" + toUtf8(each->displayTitle()) + "\" (" + each->uuid() +
              ") has no abbreviation any more: \"" + toUtf8(oldest->abbreviation()) + "\" belongs to \"" +
              toUtf8(oldest->displayTitle()) + "\".\n";
      each->setAbbreviation({});
      changed.push_back(each);
    }
  }
  if (const auto status = library.value()->save(); !status) return status.error();
  if (session.json()) {
    session.printJson(snippetsJson(changed));
  } else {
    session.out().write(told.empty() ? "There is nothing to repair.\n" : told);
  }
  return ExitStatus::done;
}

}  // namespace

void addRepairCommand(CommandParser& parser) {
  auto& command = parser.add("repair", "Leave an abbreviation of several snippets to the oldest", repair);
  command.setFooter(
      "Two devices or two programs can give one abbreviation to different snippets; the oldest expands. The others lose "
      "the abbreviation and keep everything else. \"quorlo doctor\" says whether there are any.");
}

}  // namespace quorlo
