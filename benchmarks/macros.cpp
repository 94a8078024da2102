// What a snippet with many macros costs from its stored text to the pieces that are pasted: macros of
// every type, nested snippets among them.

#include "fakes/fake_environment.h"
#include "figures.h"
#include "macros/cut_pieces.h"
#include "macros/ql_snippet_macro_interpreter.h"

#include <chrono>
#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr int kRounds = 9;

// As long as asked for, one macro for each 100 characters.
std::u16string textWithMacros(std::size_t length) {
  static constexpr std::u16string_view kMacros[] = {
      u"%textfield:name=Customer:default=Ann:textfield%",
      u"%date:dateLength=short:timeLength=short:math=3:mathType=days:showPicker=0:date%",
      u"%snippet:abbreviation=sig:snippet%",
      u"%options:name=:default=1:name0=option 1:name1=option 2:options%",
      u"%specialKey:value=return:specialKey%",
      u"%clipboard:pasteText=1:clipboard%",
      u"%cursor%",
      u"%date:dateLength=custom:dateFormat=%dd.%MM.%YY:timeLength=none:date%"};
  std::u16string text;
  for (std::size_t macro = 0; text.size() < length; ++macro) {
    text += kMacros[macro % std::size(kMacros)];
    text.resize((macro + 1) * 100, u'x');
  }
  return text;
}

double milliseconds(const QLSnippetMacroInterpreter& interpreter, const AttributedString& text) {
  std::vector<double> samples;
  for (int round = 0; round < kRounds; ++round) {
    const auto begin = std::chrono::steady_clock::now();
    auto resolved = interpreter.resolveSnippetMacros(text, u"big");
    const auto fields = fillInMacros(resolved.string()).fields;
    const auto prepared =
        cutPieces(interpreter.evaluate(resolved, kAllMacroTypes, FillInAnswers(fields.size())));
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - begin;
    if (prepared.pieces.empty()) return 0;
    samples.push_back(elapsed.count());
  }
  return percentile(std::move(samples), 0.5);
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  using namespace quorlo;
  Figures figures(argc, argv);
  FakeEnvironment environment;
  const QLSnippetMacroInterpreter interpreter(environment, [](const std::u16string& abbreviation) {
    return std::optional(AttributedString(u"Yours, " + abbreviation));
  });
  const double one = milliseconds(interpreter, AttributedString(textWithMacros(1'000'000)));
  const double two = milliseconds(interpreter, AttributedString(textWithMacros(2'000'000)));
  figures.add("interpret_1mb_10k_macros_ms", one);
  figures.add("interpret_growth", two / one);
  return 0;
}
