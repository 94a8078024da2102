#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/commands/library_restore.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/library/library_access.h"
#include "cli/library/snippet_json.h"
#include "cli/library/snippet_names.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

struct RestoreArguments {
  std::vector<std::string> names;
  bool meansSnippets = false;
  bool meansLibrary = false;
  bool isConfirmed = false;
};

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

Result<ExitStatus> restoreSnippets(CommandSession& session, const std::vector<std::string>& names) {
  const auto library = session.openLibrary(LibraryUse::changing);
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

// False also where the library cannot be opened, which a backup may well be for.
bool isInTrash(const CommandSession& session, const std::string& name) {
  if (libraryIsMissing(session.environment())) return false;
  const auto library = openLibraryToRead(session.environment());
  return library && snippetNamed(*library.value(), toUtf16(name), Among::trash);
}

Result<ExitStatus> restore(CommandSession& session, const RestoreArguments& arguments) {
  const auto& names = arguments.names;
  const bool mayMeanLibrary = names.size() == 1 && namesLibrary(names.front());
  if (arguments.meansSnippets || (!arguments.meansLibrary && !mayMeanLibrary)) {
    return restoreSnippets(session, names);
  }
  if (names.size() > 1) {
    session.note("A library is restored from one backup.");
    return ExitStatus::wrongUsage;
  }
  if (!arguments.meansLibrary && isInTrash(session, names.front())) {
    session.note("\"" + names.front() +
                 "\" names a snippet in the trash and also a backup. Add --snippet or --library.");
    return ExitStatus::wrongUsage;
  }
  return restoreLibrary(session, names.front(), arguments.isConfirmed);
}

}  // namespace

void addRestoreCommand(CommandParser& parser) {
  const auto arguments = std::make_shared<RestoreArguments>();
  auto& command = parser.add("restore", "Take snippets out of the trash, or the whole library from a backup",
                             [arguments](CommandSession& session) { return restore(session, *arguments); });
  command
      .addTexts("snippets", arguments->names,
                std::string(kSnippetNameHelp) + "; or the file or the date of a backup", "TRASHED")
      .required();
  const auto& snippet =
      command.addFlag("--snippet", arguments->meansSnippets, "What is named is a snippet in the trash");
  command.addFlag("--library", arguments->meansLibrary, "What is named is a backup").excludes(snippet);
  command.addFlag("-y,--yes", arguments->isConfirmed, "Do not ask before the library is replaced");
  command.setFooter(
      "A snippet whose abbreviation another one has meanwhile comes back without it.\n\n"
      "A backup is named by its file, or by its date, with the time where that is needed (\"quorlo backup "
      "--list\"). It takes the place of the whole library, which is kept as one more backup. A Quorlo that "
      "runs goes on with the restored library.\n\n"
      "  quorlo restore sig\n"
      "  quorlo restore 2026-11-21\n"
      "  quorlo restore \"2026-11-21 09:15\"\n"
      "  quorlo restore /media/stick/quorlo.sqlite");
}

}  // namespace quorlo
