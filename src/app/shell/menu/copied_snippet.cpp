#include "app/shell/menu/copied_snippet.h"

#include "engine/paste/piece_contents.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/records/ql_snippet.h"

namespace quorlo {

PasteboardContents copiedSnippet(const QLSnippet& snippet, const QLSnippetMacroInterpreter& interpreter) {
  const auto resolved = interpreter.resolveSnippetMacros(snippet.text(), snippet.abbreviation());
  const auto evaluated = interpreter.evaluate(resolved, kAllMacroTypes);
  return {{pieceContents(evaluated.text, snippet.type().value_or(SnippetType::plainText))}, {}, false};
}

}  // namespace quorlo
