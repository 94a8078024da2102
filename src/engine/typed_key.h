#pragma once

#include "platform/event_tap.h"

#include <functional>
#include <set>
#include <string>

namespace quorlo {

// What a key press does to the word before the caret.
enum class TypedKey {
  text,       // adds its characters; none for a key such as a volume key
  backspace,  // erases the last character
  end,        // ends the word: moves the caret, starts a line, or is a command
};

TypedKey typedKey(const KeyDownEvent& event);

// True for a key that completes an abbreviation: one of the delimiters, typed and not part of a command.
// Shift-Return and Shift-Tab are commands; Shift with any other delimiter is how it is typed.
bool isDelimiter(const KeyDownEvent& event, const std::set<std::u16string, std::less<>>& delimiters);

}  // namespace quorlo
