#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// The kind of a macro; in the order in which a text is scanned for them and in which they are offered.
enum class MacroType { textField, options, date, snippet, clipboard, cursor, specialKey };

inline constexpr std::array kAllMacroTypes = {MacroType::textField, MacroType::options,   MacroType::date,
                                              MacroType::snippet,   MacroType::clipboard, MacroType::cursor,
                                              MacroType::specialKey};

// Those whose run ends with the name of the type; also those that open an editor when clicked.
inline constexpr std::array kLongFormMacroTypes = {MacroType::textField,  MacroType::options,
                                                   MacroType::date,       MacroType::snippet,
                                                   MacroType::specialKey, MacroType::clipboard};

// Those for which the user may be asked before the snippet is inserted.
inline constexpr std::array kFillInMacroTypes = {MacroType::textField, MacroType::date, MacroType::options};

// The name in the markup; compared case-sensitively.
std::u16string_view rawValue(MacroType type);
std::optional<MacroType> macroTypeFromRawValue(std::u16string_view rawValue);

// What a macro of the type does, in the user's language.
std::u16string helperText(MacroType type);

// The macro that the editor inserts for the type.
std::u16string_view macroTemplate(MacroType type);

// The key that a single-key macro presses, in the order in which pickers show them.
enum class SpecialKeyMacroValue {
  backspace,
  forwardDelete,  // "delete" in the markup
  tab,
  returnKey,  // "return" in the markup
  escape,
  leftArrow,
  rightArrow,
  upArrow,
  downArrow,
  space
};

inline constexpr std::array kAllSpecialKeyMacroValues = {
    SpecialKeyMacroValue::backspace,  SpecialKeyMacroValue::forwardDelete, SpecialKeyMacroValue::tab,
    SpecialKeyMacroValue::returnKey,  SpecialKeyMacroValue::escape,        SpecialKeyMacroValue::leftArrow,
    SpecialKeyMacroValue::rightArrow, SpecialKeyMacroValue::upArrow,       SpecialKeyMacroValue::downArrow,
    SpecialKeyMacroValue::space};

std::u16string_view rawValue(SpecialKeyMacroValue key);
std::optional<SpecialKeyMacroValue> specialKeyFromRawValue(std::u16string_view rawValue);

// In the user's language, with the key's symbol: "⏎ (Return)".
std::u16string displayName(SpecialKeyMacroValue key);

// How the chosen entries of an options macro with several choices are joined.
enum class MultipleChoiseType { separator, bulletedList, dashedList };

inline constexpr std::array kAllMultipleChoiseTypes = {
    MultipleChoiseType::separator, MultipleChoiseType::bulletedList, MultipleChoiseType::dashedList};

std::u16string_view rawValue(MultipleChoiseType type);
std::optional<MultipleChoiseType> multipleChoiseTypeFromRawValue(std::u16string_view rawValue);

// In the user's language; empty for a type that explains itself.
std::u16string helperText(MultipleChoiseType type);

}  // namespace quorlo
