// Scans a text, turns it into tokens and back, evaluates and cuts it.

#include "fakes/fake_environment.h"
#include "fuzz/fuzz_target.h"
#include "macros/cut_pieces.h"
#include "macros/find_macros.h"
#include "macros/macro_text_attachment.h"
#include "macros/ql_snippet_macro_interpreter.h"

#include <map>

namespace quorlo {
namespace {

void checkRuns(std::u16string_view text) {
  std::size_t start = 0;
  std::map<MacroType, std::size_t> ends;
  for (const auto& [range, type] : findMacros(text)) {
    require(range.length >= 2 && range.end() <= text.size() && range.location >= start);
    require(text[range.location] == u'%' && text[range.end() - 1] == u'%');
    require(range.location >= ends[type]);
    start = range.location;
    ends[type] = range.end();
  }
}

void checkEvaluation(const AttributedString& text) {
  static const FakeEnvironment environment;
  static const QLSnippetMacroInterpreter interpreter(environment, [](const auto&) { return std::nullopt; });
  const auto fields = fillInMacros(text.string());
  require(fields.fieldOfMacro.size() == readableMacros(text.string()).size());
  const auto prepared =
      cutPieces(interpreter.evaluate(text, kAllMacroTypes, FillInAnswers(fields.fields.size(), u"%answer:")));
  AttributedString joined;
  for (const auto& piece : prepared.pieces) joined.append(piece);
  require(joined == prepared.snippetText);
  require(prepared.pieces.size() >= prepared.keys.size() && prepared.cursorPiece <= prepared.keys.size());
  require(!prepared.cursorRange || prepared.cursorRange->end() <= prepared.snippetText.size());
}

}  // namespace
}  // namespace quorlo

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorlo;
  const AttributedString text(fuzzText(data, size));
  checkRuns(text.string());
  require(toStoredText(toEditorText(text)) == text);
  checkEvaluation(text);
  return 0;
}
