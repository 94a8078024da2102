// Resolves the first line of an input; the other lines are the snippets with the abbreviations a, b, c ...

#include "fuzz/fuzz_target.h"
#include "macros/resolve_snippet_macros.h"

#include <algorithm>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorlo;
  const auto lines = fuzzLines(fuzzText(data, size), 1);
  const auto snippet = [&](const std::u16string& abbreviation) -> std::optional<AttributedString> {
    if (abbreviation.size() != 1 || abbreviation[0] < u'a') return std::nullopt;
    const std::size_t line = abbreviation[0] - u'a' + 1U;
    if (line >= lines.size()) return std::nullopt;
    TextAttributes attributes;
    attributes.bold = line % 2 == 0;
    return AttributedString(lines[line], attributes);
  };
  for (const auto& used : {std::set<std::u16string>{}, {u"a"}, {u"a", u"b"}}) {
    const auto text = resolveSnippetMacros(AttributedString(lines[0]), used, kNestedSnippetDepth, snippet);
    require(text.size() <= std::max(kLongestResolvedText, lines[0].size()));
    text.forEachRun([](const AttributedString::Run& run) { require(run.attributes.custom.empty()); });
  }
  return 0;
}
