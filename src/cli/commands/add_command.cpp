#include "base/date.h"
#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/library/snippet_editing.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "store/uuid.h"

namespace quorlo {
namespace {

Result<ExitStatus> add(CommandSession& session, const SnippetFields& fields) {
  if (!fields.text.isGiven()) {
    session.note("The snippet needs a text: --text TEXT, --text - for standard input, or --file FILE.");
    return ExitStatus::wrongUsage;
  }
  const auto text = snippetText(session, fields.text);
  if (!text) return text.error();
  const auto library = session.beginLibrary();
  if (!library) return library.error();
  auto& context = *library.value();
  const auto snippet = context.insert<QLSnippet>();
  snippet->setUuid(randomUuid());
  snippet->setCreationDate(context.now());
  if (const auto status = applyFields(session, context, *snippet, fields, text.value()); !status)
    return status.error();
  if (snippet->plainText().empty()) return Error{"The text is empty. Nothing was added."};
  if (const auto status = context.save(); !status) return status.error();
  printChanged(session, "Added", *snippet);
  return ExitStatus::done;
}

}  // namespace

void addAddCommand(CommandParser& parser) {
  const auto fields = std::make_shared<SnippetFields>();
  auto& command =
      parser.add("add", "Add a snippet", [fields](CommandSession& session) { return add(session, *fields); });
  addFields(command, *fields);
  command.setFooter(
      "The text may hold macros; \"quorlo help macros\" explains them. What is read from a file or standard input "
      "loses one line feed at its end.\n\n"
      "  quorlo add --abbreviation brb --text 'be right back'\n"
      "  fortune | quorlo add --title 'Saying' --folder Fun --text -");
}

}  // namespace quorlo
