// Translates the markers of another program, and keeps a text without any of them as it is.

#include "fakes/fake_environment.h"
#include "fuzz/fuzz_target.h"
#include "import/formats/macro_text_writer.h"
#include "import/formats/text_expander_markers.h"
#include "macros/ql_snippet_macro_interpreter.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorlo;
  static const FakeEnvironment environment;
  static const QLSnippetMacroInterpreter interpreter(environment, [](const auto&) { return std::nullopt; });
  const auto text = fuzzText(data, size);
  const auto evaluated = [](const std::u16string& macros) {
    return interpreter.evaluate(AttributedString(macros), kAllMacroTypes, {}).text.string();
  };
  const auto literal = literalMacroText(text);
  require(literal.signs == LiteralSigns::misread || evaluated(literal.text) == text);
  const auto translated = translateTextExpanderMarkers(text);
  for (const auto& notice : translated.notices) require(!notice.empty());
  if (text.find(u'%') == text.npos) require(translated.text == text && translated.notices.empty());
  evaluated(translated.text);
  return 0;
}
