#include "engine/paste/macro_preparation.h"

#include "engine/fill_in/fill_in_prompt.h"
#include "macros/cut_pieces.h"
#include "macros/evaluate_macros.h"
#include "macros/macro_type.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/records/ql_snippet.h"
#include "text/line_breaks.h"

#include <utility>

namespace quorlo {

void MacroPreparation::prepare(AttributedString content, const QLSnippet& snippet, Completion completion) {
  const auto resolved =
      withLineFeeds(interpreter_.resolveSnippetMacros(std::move(content), snippet.abbreviation()));
  auto fields = fillInMacros(resolved.string()).fields;
  if (fields.empty()) return completion(evaluate(resolved, {}));

  auto answered = [this, resolved, completion = std::move(completion)](std::optional<FillInAnswers> answers) {
    if (!answers) return completion(std::nullopt);
    completion(evaluate(resolved, std::move(*answers)));
  };
  prompt_.ask(resolved, std::move(fields), life_.guard(std::move(answered)));
}

void MacroPreparation::callOff() {
  prompt_.callOff();
}

PreparedSnippet MacroPreparation::evaluate(const AttributedString& resolved, FillInAnswers answers) const {
  return cutPieces(interpreter_.evaluate(resolved, kAllMacroTypes, std::move(answers)));
}

}  // namespace quorlo
