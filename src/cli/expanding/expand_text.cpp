#include "cli/expanding/expand_text.h"

#include "cli/expanding/expand_answers.h"
#include "macros/cut_pieces.h"
#include "macros/dates/date_and_time_formatter.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "text/line_breaks.h"
#include "text/utf.h"

#include <algorithm>
#include <utility>

namespace quorlo {

std::vector<std::size_t> Expansion::unanswered() const {
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < answers.size(); ++i) {
    if (!answers[i]) open.push_back(i);
  }
  return open;
}

bool Expansion::wantsClipboard() const {
  return std::ranges::any_of(prepared.keys, [](const KeyStep& key) {
    return key.type == kClipboardKey || key.type == kClipboardTextKey;
  });
}

Result<Expansion> expandText(const QLSnippetMacroInterpreter& interpreter, const ExpansionRequest& request) {
  LeftOutSnippets leftOut;
  const auto resolved =
      withLineFeeds(interpreter.resolveSnippetMacros(request.text, request.abbreviation, &leftOut));
  Expansion expansion{.prepared = {},
                      .fields = fillInMacros(resolved.string()).fields,
                      .answers = {},
                      .leftOut = std::move(leftOut)};
  auto answers =
      readAnswers(expansion.fields, request.answers, interpreter.dateAndTimeFormatter().userContext());
  if (!answers) return answers.error();
  expansion.answers = std::move(answers).value();
  std::optional<AttributedString> clipboard;
  if (request.clipboard) clipboard = withLineFeeds(AttributedString(toUtf16(*request.clipboard)));
  expansion.prepared =
      cutPieces(interpreter.evaluate(resolved, kAllMacroTypes, expansion.answers, std::move(clipboard)));
  return expansion;
}

}  // namespace quorlo
