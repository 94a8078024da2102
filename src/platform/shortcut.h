#pragma once

#include "platform/key_codes.h"

#include <compare>
#include <string>

namespace quorlo {

class KeyboardLayout;

// A key combination that calls Quorlo from anywhere. Of the flags only Shift, Control, Option and Command
// count.
struct Shortcut {
  KeyCode keyCode = 0;
  ModifierFlags modifierFlags = 0;

  auto operator<=>(const Shortcut&) const = default;
};

inline constexpr ModifierFlags kShortcutModifiers =
    modifier::kShift | modifier::kControl | modifier::kOption | modifier::kCommand;

// The same combination without flags that do not count.
Shortcut normalized(Shortcut shortcut);

// Whether the combination may be taken away from all applications: keys that type or edit text only
// together with Control, Option or Command, function keys with any modifiers or none.
bool isUsable(Shortcut shortcut);

// For people, in their language and on their keyboard: "Ctrl+Alt+Space".
std::u16string shortcutText(Shortcut shortcut, const KeyboardLayout& layout);

}  // namespace quorlo
