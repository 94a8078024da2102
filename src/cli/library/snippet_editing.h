#pragma once

#include "base/result.h"
#include "cli/library/snippet_text_source.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

class CommandDefinition;
class CommandSession;
class ManagedObjectContext;
class QLSnippet;

// What `add` and `edit` set of a snippet; what is not given stays as it is.
struct SnippetFields {
  std::optional<std::string> title;
  std::optional<std::string> abbreviation;
  SnippetTextSource text;
  std::optional<std::string> folder;
  std::string type;

  bool areGiven() const { return title || abbreviation || text.isGiven() || folder || !type.empty(); }
};

void addFields(CommandDefinition& command, SnippetFields& fields);

// `text` is what the fields' source gives. A snippet without a title of its own is named by its text. After
// an error the context is not to be saved. An abbreviation behind a shorter one is advised against on
// standard error and set all the same.
Status applyFields(CommandSession& session, ManagedObjectContext& context, QLSnippet& snippet,
                   const SnippetFields& fields, const std::optional<std::u16string>& text);

// What became of it, in one line or as JSON.
void printChanged(CommandSession& session, std::string_view what, const QLSnippet& snippet);

}  // namespace quorlo
