#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/library/snippet_editing.h"
#include "cli/library/snippet_names.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

namespace quorlo {
namespace {

struct EditOptions {
  std::optional<std::string> snippet;
  SnippetFields fields;
};

Result<ExitStatus> edit(CommandSession& session, const EditOptions& options) {
  if (!options.fields.areGiven()) {
    session.note("Nothing to change is given. Try: quorlo edit --help");
    return ExitStatus::wrongUsage;
  }
  const auto text = snippetText(session, options.fields.text);
  if (!text) return text.error();
  const auto library = session.openLibrary(LibraryUse::changing);
  if (!library) return library.error();
  auto& context = *library.value();
  const auto found = snippetNamed(context, toUtf16(*options.snippet), Among::library);
  if (!found) return found.error();
  auto& snippet = *found.value();
  if (const auto status = applyFields(session, context, snippet, options.fields, text.value()); !status) {
    return status.error();
  }
  if (const auto status = context.save(); !status) return status.error();
  printChanged(session, "Changed", snippet);
  return ExitStatus::done;
}

}  // namespace

void addEditCommand(CommandParser& parser) {
  const auto options = std::make_shared<EditOptions>();
  auto& command = parser.add("edit", "Change a snippet",
                             [options](CommandSession& session) { return edit(session, *options); });
  command.addText("snippet", options->snippet, kSnippetNameHelp, "SNIPPET").required();
  addFields(command, options->fields);
  command.setFooter(
      "What is not given stays as it is. A new text is plain: it has neither the attributes nor the pictures "
      "of the old one.\n\n"
      "  quorlo edit brb --text 'be right back, promised' --folder Chat");
}

}  // namespace quorlo
