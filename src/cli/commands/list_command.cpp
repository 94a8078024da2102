#include "app/shell/menu/snippet_search.h"
#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/library/folder_names.h"
#include "cli/library/snippet_query.h"
#include "cli/library/snippet_table.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

namespace quorlo {
namespace {

struct ListOptions {
  SnippetQuery query;
  bool inTrash = false;
};

Result<Predicate> condition(const ManagedObjectContext& library, const ListOptions& options) {
  if (options.inTrash) return QLSnippet::kDeletionDate.isNotNil();
  if (!options.query.folder) return searchPredicate({});
  const auto folder = folderNamed(library, *options.query.folder);
  if (!folder) return folder.error();
  if (folder.value()->type() == static_cast<std::int64_t>(CategoryType::Trash)) {
    return QLSnippet::kDeletionDate.isNotNil();
  }
  return searchPredicate({.searchString = {}, .filteredCategory = folder.value(), .sortDescriptors = {}});
}

Result<ExitStatus> list(CommandSession& session, const ListOptions& options) {
  const auto library = session.openLibrary();
  if (!library) return library.error();
  const auto wanted = condition(*library.value(), options);
  if (!wanted) return wanted.error();
  auto found = library.value()->fetch<QLSnippet>({.predicate = wanted.value()});
  if (!found) return found.error();
  sortSnippets(found.value(), options.query);
  printSnippets(session, found.value());
  return ExitStatus::done;
}

}  // namespace

void addListCommand(CommandParser& parser) {
  const auto options = std::make_shared<ListOptions>();
  auto& command = parser.add("list", "List the snippets, those in the trash left out",
                             [options](CommandSession& session) { return list(session, *options); });
  addQuery(command, options->query);
  command.addFlag("--trash", options->inTrash, "Those in the trash")
      .excludes(*command.optionNamed("--folder"));
  command.setFooter(
      "In a terminal the list stands in columns. Other programs get a line for each snippet: abbreviation, "
      "title, folder and uuid with tabs between them. --json has all of a snippet.");
}

}  // namespace quorlo
