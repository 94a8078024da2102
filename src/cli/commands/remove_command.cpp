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

#include <algorithm>

namespace quorlo {
namespace {

struct RemoveOptions {
  std::vector<std::string> snippets;
  bool permanently = false;
  bool isConfirmed = false;
};

using Snippets = std::vector<std::shared_ptr<QLSnippet>>;

void print(CommandSession& session, const nlohmann::ordered_json& document, std::string_view what,
           const std::vector<std::string>& lines) {
  if (session.json()) return session.printJson(document);
  for (const auto& each : lines) session.out().write(std::string(what) + " " + each + "\n");
}

std::vector<std::string> linesOf(const Snippets& snippets) {
  std::vector<std::string> lines;
  for (const auto& each : snippets) lines.push_back(inOneLine(*each));
  return lines;
}

Result<ExitStatus> moveToTrash(CommandSession& session, const RemoveOptions& options) {
  const auto library = session.openLibrary(LibraryUse::changing);
  if (!library) return library.error();
  const auto snippets = snippetsNamed(*library.value(), options.snippets, Among::library);
  if (!snippets) return snippets.error();
  for (const auto& each : snippets.value()) each->moveToTrash();
  if (const auto status = library.value()->save(); !status) return status.error();
  print(session, snippetsJson(snippets.value()), "Moved to the trash", linesOf(snippets.value()));
  return ExitStatus::done;
}

// Those in the trash first: they are the likelier ones to be meant.
Result<Snippets> anywhere(const ManagedObjectContext& library, const std::vector<std::string>& names) {
  Snippets snippets;
  for (const auto& name : names) {
    auto found = snippetNamed(library, toUtf16(name), Among::trash);
    if (!found) found = snippetNamed(library, toUtf16(name), Among::library);
    if (!found) return found.error();
    if (std::ranges::find(snippets, found.value()) == snippets.end()) snippets.push_back(found.value());
  }
  return snippets;
}

Result<ExitStatus> deleteForGood(CommandSession& session, const RemoveOptions& options) {
  if (!options.isConfirmed && !session.canAsk()) {
    session.note("To delete for good without being asked, add --yes.");
    return ExitStatus::wrongUsage;
  }
  const auto library = session.openLibrary(options.isConfirmed ? LibraryUse::changing : LibraryUse::reading);
  if (!library) return library.error();
  const auto snippets = anywhere(*library.value(), options.snippets);
  if (!snippets) return snippets.error();
  const auto lines = linesOf(snippets.value());
  if (!options.isConfirmed) {
    for (const auto& each : lines) session.note(each);
    if (!session.confirm("Delete for good? This cannot be undone.")) return Error{"Nothing was deleted."};
  }
  const auto document = snippetsJson(snippets.value());
  for (const auto& each : snippets.value()) library.value()->deleteObject(*each);
  if (const auto status = library.value()->save(); !status) return status.error();
  print(session, document, "Deleted", lines);
  return ExitStatus::done;
}

}  // namespace

void addRemoveCommand(CommandParser& parser) {
  const auto options = std::make_shared<RemoveOptions>();
  auto& command = parser.add("remove", "Move snippets to the trash", [options](CommandSession& session) {
    return options->permanently ? deleteForGood(session, *options) : moveToTrash(session, *options);
  });
  command.addTexts("snippets", options->snippets, kSnippetNameHelp, "SNIPPET").required();
  command.addFlag("--permanently", options->permanently, "Delete them for good, also out of the trash");
  command.addFlag("-y,--yes", options->isConfirmed, "Do not ask before that");
  command.setFooter(
      "Of several snippets all are removed or none. What is in the trash for 30 days is deleted.");
}

}  // namespace quorlo
