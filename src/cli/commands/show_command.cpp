#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/library/snippet_json.h"
#include "cli/library/snippet_names.h"
#include "cli/library/snippet_type_names.h"
#include "cli/local_date.h"
#include "cli/terminal_text.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

struct ShowOptions {
  std::optional<std::string> snippet;
  bool onlyText = false;
};

std::string field(std::string_view name, const std::string& value) {
  return value.empty() ? "" : fmt::format("{:<14}{}\n", name, printable(value, LineBreaks::shown));
}

std::string dateField(std::string_view name, const std::optional<Date>& date) {
  return date ? field(name, localDate(*date)) : "";
}

std::string fields(QLSnippet& snippet) {
  const auto folder = snippet.category();
  const auto pictures = snippet.images().size();
  return field("Title", toUtf8(snippet.displayTitle())) +
         field("Abbreviation", toUtf8(snippet.abbreviation())) +
         field("Folder", folder ? toUtf8(folder->title()) : "") +
         field("Type", std::string(nameOf(snippet.formatted()))) +
         field("Pictures", pictures > 0 ? std::to_string(pictures) : "") +
         field("Used", std::to_string(snippet.useCount())) + dateField("Created", snippet.creationDate()) +
         dateField("Modified", snippet.modifiedDate()) + dateField("In the trash", snippet.deletionDate()) +
         field("UUID", snippet.uuid());
}

// A terminal would obey control characters.
std::string content(const QLSnippet& snippet, const CommandOutput& out) {
  const auto text = toUtf8(snippet.plainText());
  return out.isTerminal() ? printable(text, LineBreaks::kept) : text;
}

Result<std::shared_ptr<QLSnippet>> find(const ManagedObjectContext& library, std::u16string_view name) {
  auto found = snippetNamed(library, name, Among::library);
  if (found) return found;
  auto trashed = snippetNamed(library, name, Among::trash);
  return trashed ? trashed : found;
}

Result<ExitStatus> show(CommandSession& session, const ShowOptions& options) {
  const auto library = session.openLibrary();
  if (!library) return library.error();
  const auto found = find(*library.value(), toUtf16(*options.snippet));
  if (!found) return found.error();
  auto& snippet = *found.value();
  auto& out = session.out();
  if (session.json()) {
    session.printJson(snippetJson(snippet));
  } else if (options.onlyText) {
    out.write(content(snippet, out) + "\n");
  } else {
    out.write(fields(snippet) + "\n" + content(snippet, out) + "\n");
  }
  return ExitStatus::done;
}

}  // namespace

void addShowCommand(CommandParser& parser) {
  const auto options = std::make_shared<ShowOptions>();
  auto& command = parser.add("show", "Show all of a snippet",
                             [options](CommandSession& session) { return show(session, *options); });
  command.addText("snippet", options->snippet, kSnippetNameHelp, "SNIPPET").required();
  command.addFlag("-t,--text", options->onlyText, "Only the text, with its macros as they are stored");
  command.setFooter("To have the macros evaluated: quorlo expand");
}

}  // namespace quorlo
