#pragma once

#include "macros/dates/moment.h"
#include "macros/find_macros.h"
#include "macros/macro_type.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorlo {

// The entries of an options macro.
struct OptionList {
  std::vector<std::u16string> entries;
  std::size_t defaultEntry = 0;  // the first one where the macro names none that there is
  bool multiple = false;
  MultipleChoiseType choiceType = MultipleChoiseType::separator;
  std::u16string separator = u", ";

  bool operator==(const OptionList&) const = default;
};

// Linear in the macro. Of a damaged list as many entries as are together no longer than the macro.
OptionList optionList(std::u16string_view macroString);

// The chosen entries as they are inserted.
std::u16string joinChoices(const OptionList& list, const std::vector<std::u16string>& chosen);

// One question to the user. Macros of one type and name share it; those without a name never do.
struct FillInField {
  MacroType type = MacroType::textField;  // a text field, options, or a date to be picked
  std::u16string name;                    // may be empty
  std::u16string macroString;             // the first macro that asks
  std::u16string defaultText;             // of a text field; may hold several lines
  OptionList options;                     // of options
};

// An entered text, the texts of the chosen entries in their order, or a picked date.
using FillInAnswer = std::variant<std::u16string, std::vector<std::u16string>, Moment>;

// Answer n belongs to field n; an absent one, or one of another kind than the field's, counts as none.
using FillInAnswers = std::vector<std::optional<FillInAnswer>>;

// What the fill-in macros of a text ask, in the order of the text.
struct FillInMacros {
  std::vector<FillInField> fields;
  // For each macro its field; absent for those that ask nothing.
  std::vector<std::optional<std::size_t>> fieldOfMacro;
};

// Of a text whose snippet macros are resolved; `macros` are its readableMacros.
FillInMacros fillInMacros(std::u16string_view text, std::span<const MacroOccurrence> macros);
FillInMacros fillInMacros(std::u16string_view text);

}  // namespace quorlo
