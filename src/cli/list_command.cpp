#include "cli/command_parser.h"
#include "cli/command_session.h"
#include "cli/commands.h"
#include "store/managed_object_context.h"
#include "store/ql_snippet.h"
#include "store/snippet_predicates.h"
#include "text/utf.h"

#include <CLI/CLI.hpp>

namespace quorlo {
namespace {

Result<ExitStatus> list(CommandSession& session) {
  const auto library = session.openLibrary();
  if (!library) return library.error();
  const auto found = library.value()->fetch<QLSnippet>({.predicate = liveClause()});
  if (!found) return found.error();
  for (const auto& each : found.value()) session.out().write(toUtf8(each->title()) + "\n");
  return ExitStatus::done;
}

}  // namespace

void addListCommand(CommandParser& parser) {
  parser.add("list", "List snippets", [](CommandSession& session) { return list(session); });
}

}  // namespace quorlo
