#include "platform/shortcut.h"

#include "base/localized.h"
#include "platform/keyboard_layout.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

struct Name {
  KeyCode code;
  std::u16string_view text;
};

// As PC keyboards name them.
constexpr auto kModifierNames = std::to_array<std::pair<ModifierFlags, std::u16string_view>>({
    {modifier::kControl, u"Super"},
    {modifier::kCommand, u"Ctrl"},
    {modifier::kOption, u"Alt"},
    {modifier::kShift, u"Shift"},
});

constexpr auto kFunctionKeys = std::to_array<Name>({
    {122, u"F1"},
    {120, u"F2"},
    {99, u"F3"},
    {118, u"F4"},
    {96, u"F5"},
    {97, u"F6"},
    {98, u"F7"},
    {100, u"F8"},
    {101, u"F9"},
    {109, u"F10"},
    {103, u"F11"},
    {111, u"F12"},
    {106, u"F16"},
    {64, u"F17"},
    {79, u"F18"},
    {80, u"F19"},
    {90, u"F20"},
});

// Keys that neither type nor edit text, like the function keys.
constexpr auto kOtherCommandKeys = std::to_array<Name>({
    {105, u"Print"},
    {107, u"Scroll Lock"},
    {113, u"Pause"},
    {110, u"Menu"},
});

constexpr auto kTextKeys = std::to_array<Name>({
    {key::kSpace, u"Space"},
    {key::kReturn, u"Return"},
    {key::kKeypadEnter, u"Num Enter"},
    {key::kTab, u"Tab"},
    {key::kBackspace, u"Backspace"},
    {key::kEscape, u"Esc"},
    {key::kHelp, u"Ins"},
    {key::kForwardDelete, u"Del"},
    {key::kHome, u"Home"},
    {key::kEnd, u"End"},
    {key::kPageUp, u"PgUp"},
    {key::kPageDown, u"PgDn"},
    {key::kLeftArrow, u"←"},
    {key::kRightArrow, u"→"},
    {key::kUpArrow, u"↑"},
    {key::kDownArrow, u"↓"},
    {82, u"Num 0"},
    {83, u"Num 1"},
    {84, u"Num 2"},
    {85, u"Num 3"},
    {86, u"Num 4"},
    {87, u"Num 5"},
    {88, u"Num 6"},
    {89, u"Num 7"},
    {91, u"Num 8"},
    {92, u"Num 9"},
    {65, u"Num ."},
    {67, u"Num *"},
    {69, u"Num +"},
    {75, u"Num /"},
    {78, u"Num -"},
});

std::u16string_view nameIn(std::span<const Name> names, KeyCode code) {
  const auto found = std::ranges::find(names, code, &Name::code);
  return found != names.end() ? found->text : std::u16string_view();
}

std::u16string keyText(KeyCode code, const KeyboardLayout& layout) {
  for (const std::span<const Name> names :
       {std::span<const Name>(kTextKeys), {kFunctionKeys}, {kOtherCommandKeys}}) {
    if (const auto name = nameIn(names, code); !name.empty()) return localized(name);
  }
  return layout.labelOfKey(code);
}

}  // namespace

Shortcut normalized(Shortcut shortcut) {
  shortcut.modifierFlags &= kShortcutModifiers;
  return shortcut;
}

bool isUsable(Shortcut shortcut) {
  if ((shortcut.modifierFlags & (kShortcutModifiers & ~modifier::kShift)) != 0) return true;
  return !nameIn(kFunctionKeys, shortcut.keyCode).empty() ||
         !nameIn(kOtherCommandKeys, shortcut.keyCode).empty();
}

std::u16string shortcutText(Shortcut shortcut, const KeyboardLayout& layout) {
  std::u16string text;
  for (const auto& [flag, name] : kModifierNames) {
    if ((shortcut.modifierFlags & flag) != 0) text += localized(name) + u"+";
  }
  return text + keyText(shortcut.keyCode, layout);
}

}  // namespace quorlo
