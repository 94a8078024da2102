#include "cli/library/snippet_editing.h"

#include "app/settings/settings_controller.h"
#include "cli/command_session.h"
#include "cli/definition/command_definition.h"
#include "cli/library/folder_names.h"
#include "cli/library/snippet_json.h"
#include "cli/library/snippet_names.h"
#include "cli/library/snippet_type_names.h"
#include "store/context/managed_object_context.h"
#include "store/lookup/abbreviation_rules.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

Status setAbbreviation(CommandSession& session, const ManagedObjectContext& context, QLSnippet& snippet,
                       const std::u16string& abbreviation) {
  const AbbreviationRules rules(context, {});
  if (const auto fault = rules.validate(abbreviation, snippet)) return Error{toUtf8(*fault)};
  if (const auto advice =
          rules.advice(abbreviation, snippet, session.settings().abbreviationsTriggerType())) {
    session.note(toUtf8(*advice));
  }
  snippet.setAbbreviation(abbreviation);
  return {};
}

void setTitle(QLSnippet& snippet, const std::string& title) {
  snippet.setTitle(toUtf16(title));
  snippet.setTitleIsCustom(!title.empty());
}

void setType(QLSnippet& snippet, SnippetType type) {
  snippet.setFormatted(static_cast<std::int64_t>(type));
}

// A picture whose text is set is one no more.
void setText(QLSnippet& snippet, const std::u16string& text) {
  snippet.setPlainText(text);
  if (snippet.type() == SnippetType::image) setType(snippet, SnippetType::plainText);
}

std::optional<SnippetType> typeNamed(std::string_view name) {
  for (const auto& [known, type] : kSnippetTypeNames) {
    if (known == name) return type;
  }
  return std::nullopt;
}

}  // namespace

void addFields(CommandDefinition& command, SnippetFields& fields) {
  command.addText("-a,--abbreviation", fields.abbreviation, "What is typed for it; \"\" for none",
                  "ABBREVIATION");
  addTextSource(command, fields.text);
  command.addText("--title", fields.title, "Its name; without one its first line names it");
  command.addText("-f,--folder", fields.folder,
                  "The folder, made if there is none of the name; \"\" for none", "FOLDER");
  command.addChoice("--type", fields.type, {"plain", "formatted", "code"}, "What the text is");
}

Status applyFields(CommandSession& session, ManagedObjectContext& context, QLSnippet& snippet,
                   const SnippetFields& fields, const std::optional<std::u16string>& text) {
  const bool isNamedByText =
      !snippet.titleIsCustom() && snippet.title() == titleFromText(snippet.plainText());
  if (text) setText(snippet, *text);
  if (const auto type = typeNamed(fields.type)) setType(snippet, *type);
  if (fields.title) setTitle(snippet, *fields.title);
  if (snippet.title().empty() || (isNamedByText && !fields.title)) {
    snippet.setTitle(titleFromText(snippet.plainText()));
  }
  if (fields.folder && fields.folder->empty()) {
    snippet.setCategory(nullptr);
  } else if (fields.folder) {
    const auto folder = folderToFill(context, *fields.folder);
    if (!folder) return folder.error();
    snippet.setCategory(folder.value().get());
  }
  if (!fields.abbreviation) return {};
  return setAbbreviation(session, context, snippet, toUtf16(*fields.abbreviation));
}

void printChanged(CommandSession& session, std::string_view what, const QLSnippet& snippet) {
  if (session.json()) {
    session.printJson(snippetJson(snippet));
  } else {
    session.out().write(std::string(what) + " " + inOneLine(snippet) + "\n");
  }
}

}  // namespace quorlo
