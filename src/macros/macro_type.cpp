#include "macros/macro_type.h"

#include "base/localized.h"

#include <algorithm>

namespace quorlo {
namespace {

template <class Case>
struct Name {
  Case value;
  std::u16string_view rawValue;
  std::u16string_view baseText;
};

constexpr Name<MacroType> kMacroTypes[] = {
    {MacroType::textField, u"textfield",
     u"When using the snippet, Quorlo will prompt you to fill in a text field."},
    {MacroType::options, u"options",
     u"When using the snippet, Quorlo will present you predefined options to choose from."},
    {MacroType::date, u"date", u"Inserts the current date and time or a date in the future or past."},
    {MacroType::snippet, u"snippet", u"Inserts the content of another snippet."},
    {MacroType::clipboard, u"clipboard", u"Inserts the current content from the clipboard."},
    {MacroType::cursor, u"cursor", u"Puts the cursor at the location of this macro."},
    {MacroType::specialKey, u"specialKey",
     u"Performs a key press or key combination at the location of this macro."},
};

constexpr Name<SpecialKeyMacroValue> kSpecialKeys[] = {
    {SpecialKeyMacroValue::backspace, u"backspace", u"⌫ (Backspace)"},
    {SpecialKeyMacroValue::forwardDelete, u"delete", u"⌦ (Forward Delete)"},
    {SpecialKeyMacroValue::tab, u"tab", u"⇥ (Tab)"},
    {SpecialKeyMacroValue::returnKey, u"return", u"⏎ (Return)"},
    {SpecialKeyMacroValue::escape, u"escape", u"⎋ (Escape)"},
    {SpecialKeyMacroValue::leftArrow, u"leftArrow", u"← (Left Arrow)"},
    {SpecialKeyMacroValue::rightArrow, u"rightArrow", u"→ (Right Arrow)"},
    {SpecialKeyMacroValue::upArrow, u"upArrow", u"↑ (Up Arrow)"},
    {SpecialKeyMacroValue::downArrow, u"downArrow", u"↓ (Down Arrow)"},
    {SpecialKeyMacroValue::space, u"space", u"␣ (Spacebar)"},
};

constexpr Name<MultipleChoiseType> kMultipleChoiseTypes[] = {
    {MultipleChoiseType::separator, u"separator",
     u"A separator like a comma can be inserted between the selected options."},
    {MultipleChoiseType::bulletedList, u"bulletedList", u""},
    {MultipleChoiseType::dashedList, u"dashedList", u""},
};

template <class Names, class Case>
const auto& nameOf(const Names& names, Case value) {
  return names[static_cast<std::size_t>(value)];
}

template <class Case, std::size_t count>
std::optional<Case> caseOf(const Name<Case> (&names)[count], std::u16string_view rawValue) {
  const auto* found = std::ranges::find(names, rawValue, &Name<Case>::rawValue);
  return found == std::end(names) ? std::nullopt : std::optional(found->value);
}

}  // namespace

std::u16string_view rawValue(MacroType type) {
  return nameOf(kMacroTypes, type).rawValue;
}

std::optional<MacroType> macroTypeFromRawValue(std::u16string_view rawValue) {
  return caseOf(kMacroTypes, rawValue);
}

std::u16string helperText(MacroType type) {
  return localized(nameOf(kMacroTypes, type).baseText);
}

std::u16string_view macroTemplate(MacroType type) {
  switch (type) {
    case MacroType::textField:
      return u"%textfield:name=:default=:textfield%";
    case MacroType::options:
      return u"%options:name=:default=0:name0=option 1:name1=option 2:options%";
    case MacroType::date:
      return u"%date:dateLength=short:timeLength=short:math=0:mathType=days:showPicker=0:date%";
    case MacroType::snippet:
      return u"%snippet:abbreviation=:snippet%";
    case MacroType::clipboard:
      return u"%clipboard%";
    case MacroType::cursor:
      return u"%cursor%";
    case MacroType::specialKey:
      return u"%specialKey:value=return:specialKey%";
  }
  return {};
}

std::u16string_view rawValue(SpecialKeyMacroValue key) {
  return nameOf(kSpecialKeys, key).rawValue;
}

std::optional<SpecialKeyMacroValue> specialKeyFromRawValue(std::u16string_view rawValue) {
  return caseOf(kSpecialKeys, rawValue);
}

std::u16string displayName(SpecialKeyMacroValue key) {
  return localized(nameOf(kSpecialKeys, key).baseText);
}

std::u16string_view rawValue(MultipleChoiseType type) {
  return nameOf(kMultipleChoiseTypes, type).rawValue;
}

std::optional<MultipleChoiseType> multipleChoiseTypeFromRawValue(std::u16string_view rawValue) {
  return caseOf(kMultipleChoiseTypes, rawValue);
}

std::u16string helperText(MultipleChoiseType type) {
  const auto text = nameOf(kMultipleChoiseTypes, type).baseText;
  return text.empty() ? std::u16string() : localized(text);
}

}  // namespace quorlo
