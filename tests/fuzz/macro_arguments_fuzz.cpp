// Reads, writes and removes an argument of one macro string. An input is the macro, the argument's name
// and the value to write, a line each.

#include "fuzz/fuzz_target.h"
#include "macros/fill_in_macros.h"
#include "macros/macro_arguments.h"

namespace quorlo {
namespace {

void check(std::u16string_view macro, std::u16string_view name, std::u16string_view value) {
  valueForArgument(name, macro);
  const auto entries = optionList(macro).entries;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto number = std::to_string(i);
    require(valueForArgument(u"name" + std::u16string(number.begin(), number.end()), macro) == entries[i]);
  }
  readBoolean(value);
  readInteger(value);
  setValueForArgument(value, name, macro, Escaping::none);
  const auto removed = removeArgument(name, macro);
  require(!removed || removed->size() < macro.size());

  const auto escaped = escapeMacroValue(value);
  require(escaped.find_first_of(macroSyntaxControlSymbols) == escaped.npos);
  const bool looksEscaped = value.find(u"(!(") != value.npos;
  require(looksEscaped || unescapeMacroValue(escaped) == value);
  const auto written = setValueForArgument(value, name, macro, Escaping::escape);
  if (looksEscaped || name.find_first_of(u":=") != name.npos || !macroType(macro)) return;
  const auto read = valueForArgument(name, written);
  require(!read || *read == value);
}

}  // namespace
}  // namespace quorlo

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto lines = quorlo::fuzzLines(quorlo::fuzzText(data, size), 3);
  quorlo::check(lines[0], lines[1], lines[2]);
  return 0;
}
