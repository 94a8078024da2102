#pragma once

#include "macros/macro_type.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// The markup of one macro and its arguments: "%textfield:name=Customer:default=:textfield%". Clipboard
// and cursor macros also have the short forms "%clipboard%" and "%cursor%".
//
// All operations work on one macro string, from its opening "%" to its closing one, and accept anything.
// An argument is found by a plain search for its name and "=", wherever they first occur: stored snippets
// were written and are read that way. Pure functions; any thread.

inline constexpr std::u16string_view macroSyntaxControlSymbols = u"%=:";
inline constexpr char16_t macroAgrumentValueEndCharacter = u':';
inline constexpr char16_t macroSeperatorCharacter = u':';

// Absent for a string that is no macro.
std::optional<MacroType> macroType(std::u16string_view macroString);

// Unescaped; absent when there is no such argument or its value has no end.
std::optional<std::u16string> valueForArgument(std::u16string_view name, std::u16string_view macroString);

// Values are escaped but for custom date formats, which carry "%" signs of their own.
enum class Escaping { none, escape };

// Replaces the value of an argument, or inserts the argument in front of all others. A short form becomes
// the full one; a string that is no macro is given back as it is.
std::u16string setValueForArgument(std::u16string_view value, std::u16string_view name,
                                   std::u16string_view macroString, Escaping escaping);

// Absent when there is no such argument, or nothing that ends its value.
std::optional<std::u16string> removeArgument(std::u16string_view name, std::u16string_view macroString);

// ":", "=" and "%" as "(!(colon)!)", "(!(equal)!)" and "(!(percent)!)".
std::u16string escapeMacroValue(std::u16string_view value);
std::u16string unescapeMacroValue(std::u16string_view value);

// True for a text that begins with a digit above 0 or with y, Y, t or T.
bool readBoolean(std::u16string_view value);

// An optional sign and decimal digits, and nothing else; absent also for a number beyond 64 bits.
std::optional<std::int64_t> readInteger(std::u16string_view value);

}  // namespace quorlo
