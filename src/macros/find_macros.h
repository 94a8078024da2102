#pragma once

#include "macros/macro_type.h"
#include "text/text_range.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// A run of a text that is written like a macro, from its opening "%" to its closing one.
struct MacroOccurrence {
  TextRange range;
  MacroType type;

  bool operator==(const MacroOccurrence&) const = default;
};

// All runs, ascending. Runs of one type never overlap; in damaged texts runs of different types may.
//
// A run ends at its type's name and "%", a cursor macro at the next "%". Where the text holds
// "%clipboard%" anywhere, every run ends at the next "%": the short form has no second name at which to
// end. An opening without an end stays text and is logged. Linear in the text.
std::vector<MacroOccurrence> findMacros(std::u16string_view text);

// Of those, the ones that count as macros: their type can be read, and they do not begin inside an
// earlier one.
std::vector<MacroOccurrence> readableMacros(std::u16string_view text);

// The markup of readableMacros.
std::vector<std::u16string> findMacroStrings(std::u16string_view text);

}  // namespace quorlo
