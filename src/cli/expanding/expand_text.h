#pragma once

#include "base/result.h"
#include "macros/fill_in_macros.h"
#include "macros/prepared_snippet.h"
#include "macros/resolve_snippet_macros.h"
#include "text/attributed_string.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class QLSnippetMacroInterpreter;

// A text with macros, and what the command line knows of what they ask.
struct ExpansionRequest {
  AttributedString text;
  std::u16string abbreviation;           // of the snippet that the text came from; may be empty
  std::vector<std::string> answers;      // NAME=VALUE
  std::optional<std::string> clipboard;  // without it, clipboard macros stay keys
};

struct Expansion {
  PreparedSnippet prepared;
  std::vector<FillInField> fields;
  FillInAnswers answers;  // answer n belongs to field n; absent where the default was taken
  LeftOutSnippets leftOut = {};

  std::vector<std::size_t> unanswered() const;
  bool wantsClipboard() const;  // and was not given one
};

// As the program prepares a snippet, with the answers in the place of the window. Pure but for the lookup.
Result<Expansion> expandText(const QLSnippetMacroInterpreter& interpreter, const ExpansionRequest& request);

}  // namespace quorlo
