#include "app/settings/settings_controller.h"
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
#include "text/utf.h"

namespace quorlo {
namespace {

struct SearchOptions {
  std::vector<std::string> words;
  SnippetQuery query;
};

// The words are one text, as in the field of the menu.
std::u16string searchString(const std::vector<std::string>& words) {
  std::string joined;
  for (const auto& each : words) joined.append(joined.empty() ? "" : " ").append(each);
  return toUtf16(joined);
}

Result<ExitStatus> search(CommandSession& session, const SearchOptions& options) {
  const auto library = session.openLibrary();
  if (!library) return library.error();
  SnippetSearch search{searchString(options.words), session.settings().searchScopes(), nullptr, {}};
  if (options.query.folder) {
    const auto folder = folderNamed(*library.value(), *options.query.folder);
    if (!folder) return folder.error();
    search.filteredCategory = folder.value();
  }
  auto found = library.value()->fetch<QLSnippet>({.predicate = searchPredicate(search)});
  if (!found) return found.error();
  sortSnippets(found.value(), options.query);
  printSnippets(session, found.value());
  return found.value().empty() ? ExitStatus::failed : ExitStatus::done;
}

}  // namespace

void addSearchCommand(CommandParser& parser) {
  const auto options = std::make_shared<SearchOptions>();
  auto& command = parser.add("search", "Find snippets as the menu's search does",
                             [options](CommandSession& session) { return search(session, *options); });
  command.addTexts("words", options->words, "What to look for, whatever the case of its letters").required();
  addQuery(command, options->query);
  command.setFooter(
      "Several words are looked for as they stand, blanks included. Titles, abbreviations and texts are "
      "searched, or what the setting SearchScopes says. The exit status is 1 when nothing is found.");
}

}  // namespace quorlo
