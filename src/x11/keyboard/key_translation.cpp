#include "x11/keyboard/key_translation.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>

namespace quorlo {

namespace {

struct Place {
  XKeycode keycode;
  KeyCode code;
};

// One row of the keyboard per line, from the left.
constexpr auto kPlaces = std::to_array<Place>({
    {49, 50}, {10, 18}, {11, 19}, {12, 20},  {13, 21},  {14, 23},  {15, 22},
    {16, 26}, {17, 28}, {18, 25}, {19, 29},  {20, 27},  {21, 24},  // ` 1 ... 0 - =
    {24, 12}, {25, 13}, {26, 14}, {27, 15},  {28, 17},  {29, 16},  {30, 32},
    {31, 34}, {32, 31}, {33, 35}, {34, 33},  {35, 30},  {51, 42},  // q w ... [ ] backslash
    {38, 0},  {39, 1},  {40, 2},  {41, 3},   {42, 5},   {43, 4},   {44, 38},
    {45, 40}, {46, 37}, {47, 41}, {48, 39},  // a s ... ; '
    {94, 10}, {52, 6},  {53, 7},  {54, 8},   {55, 9},   {56, 11},  {57, 45},
    {58, 46}, {59, 43}, {60, 47}, {61, 44},  {97, 94},  {132, 93},            // the Japanese _ and yen
    {63, 67}, {82, 78}, {86, 69}, {106, 75}, {125, 81}, {129, 95}, {91, 65},  // keypad * - + / = , .
    {90, 82}, {87, 83}, {88, 84}, {89, 85},  {83, 86},  {84, 87},  {85, 88},
    {79, 89}, {80, 91}, {81, 92},  // 0-9
});

struct NamedKeyEntry {
  XKeysym keysym;
  KeyCode code;
  char16_t character;  // 0: that of the keysym
};

// The first keysym with a code is the one that is pressed for it.
constexpr auto kNamedKeys = std::to_array<NamedKeyEntry>({
    {XKB_KEY_Return, key::kReturn, u'\r'},
    {XKB_KEY_KP_Enter, key::kKeypadEnter, u'\r'},
    {XKB_KEY_Tab, key::kTab, u'\t'},
    {XKB_KEY_KP_Tab, key::kTab, u'\t'},
    {XKB_KEY_ISO_Left_Tab, key::kTab, u'\x19'},
    {XKB_KEY_space, key::kSpace, 0},
    {XKB_KEY_KP_Space, key::kSpace, 0},
    {XKB_KEY_BackSpace, key::kBackspace, u'\x7F'},
    {XKB_KEY_Escape, key::kEscape, u'\x1B'},
    {XKB_KEY_Delete, key::kForwardDelete, kForwardDeleteCharacter},
    {XKB_KEY_KP_Delete, key::kForwardDelete, kForwardDeleteCharacter},
    {XKB_KEY_Left, key::kLeftArrow, kLeftArrowCharacter},
    {XKB_KEY_KP_Left, key::kLeftArrow, kLeftArrowCharacter},
    {XKB_KEY_Right, key::kRightArrow, kRightArrowCharacter},
    {XKB_KEY_KP_Right, key::kRightArrow, kRightArrowCharacter},
    {XKB_KEY_Up, key::kUpArrow, kUpArrowCharacter},
    {XKB_KEY_KP_Up, key::kUpArrow, kUpArrowCharacter},
    {XKB_KEY_Down, key::kDownArrow, kDownArrowCharacter},
    {XKB_KEY_KP_Down, key::kDownArrow, kDownArrowCharacter},
    {XKB_KEY_Home, key::kHome, kHomeCharacter},
    {XKB_KEY_KP_Home, key::kHome, kHomeCharacter},
    {XKB_KEY_End, key::kEnd, kEndCharacter},
    {XKB_KEY_KP_End, key::kEnd, kEndCharacter},
    {XKB_KEY_Page_Up, key::kPageUp, kPageUpCharacter},
    {XKB_KEY_KP_Page_Up, key::kPageUp, kPageUpCharacter},
    {XKB_KEY_Page_Down, key::kPageDown, kPageDownCharacter},
    {XKB_KEY_KP_Page_Down, key::kPageDown, kPageDownCharacter},
    {XKB_KEY_Insert, key::kHelp, kInsertCharacter},
    {XKB_KEY_KP_Insert, key::kHelp, kInsertCharacter},
    {XKB_KEY_Help, key::kHelp, kInsertCharacter},
    {XKB_KEY_Menu, 110, kMenuCharacter},
    {XKB_KEY_Print, 105, kPrintScreenCharacter},
    {XKB_KEY_Scroll_Lock, 107, kScrollLockCharacter},
    {XKB_KEY_Pause, 113, kPauseCharacter},
});

// F1 to F20, as far as they have codes.
constexpr auto kFunctionKeyCodes = std::to_array<KeyCode>(
    {122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, 105, 107, 113, 106, 64, 79, 80, 90});

// Where every layout for X has them: Alt is Mod1, Super is Mod4.
struct ModifierPlace {
  std::uint32_t bit;
  ModifierFlags flag;
};
constexpr auto kModifierPlaces = std::to_array<ModifierPlace>({
    {1U << 0U, modifier::kShift},
    {1U << 2U, modifier::kCommand},
    {1U << 3U, modifier::kOption},
    {1U << 6U, modifier::kControl},
});

bool isFunctionKey(XKeysym keysym) {
  return keysym >= XKB_KEY_F1 && keysym <= XKB_KEY_F35;
}

const NamedKeyEntry* namedKey(XKeysym keysym) {
  const auto* found = std::ranges::find(kNamedKeys, keysym, &NamedKeyEntry::keysym);
  return found != kNamedKeys.end() ? found : nullptr;
}

}  // namespace

KeyCode keyCodeFor(XKeycode keycode, XKeysym keysym) {
  if (const auto* named = namedKey(keysym)) return named->code;
  if (isFunctionKey(keysym)) {
    const auto index = keysym - XKB_KEY_F1;
    return index < kFunctionKeyCodes.size() ? kFunctionKeyCodes[index] : kNoKeyCode;
  }
  const auto* found = std::ranges::find(kPlaces, keycode, &Place::keycode);
  return found != kPlaces.end() ? found->code : kNoKeyCode;
}

XKeycode keycodeAtPlace(KeyCode code) {
  const auto* found = std::ranges::find(kPlaces, code, &Place::code);
  return found != kPlaces.end() ? found->keycode : XKeycode{0};
}

XKeysym keysymOfNamedKey(KeyCode code) {
  if (const auto* named = std::ranges::find(kNamedKeys, code, &NamedKeyEntry::code);
      named != kNamedKeys.end()) {
    return named->keysym;
  }
  const auto* function = std::ranges::find(kFunctionKeyCodes, code);
  if (function == kFunctionKeyCodes.end()) return XKB_KEY_NoSymbol;
  return XKB_KEY_F1 + static_cast<XKeysym>(function - kFunctionKeyCodes.begin());
}

std::optional<char16_t> charactersOfNamedKey(XKeysym keysym) {
  if (isFunctionKey(keysym)) return static_cast<char16_t>(kF1Character + (keysym - XKB_KEY_F1));
  const auto* named = namedKey(keysym);
  if (named == nullptr || named->character == 0) return std::nullopt;
  return named->character;
}

ModifierFlags flagsOfState(std::uint32_t modifiers) {
  ModifierFlags flags = 0;
  for (const auto& place : kModifierPlaces) {
    if ((modifiers & place.bit) != 0) flags |= place.flag;
  }
  return flags;
}

std::uint32_t stateOfFlags(ModifierFlags flags) {
  std::uint32_t modifiers = 0;
  for (const auto& place : kModifierPlaces) {
    if ((flags & place.flag) != 0) modifiers |= place.bit;
  }
  return modifiers;
}

bool isModifier(XKeysym keysym) {
  return (keysym >= XKB_KEY_Shift_L && keysym <= XKB_KEY_Hyper_R) ||
         (keysym >= XKB_KEY_ISO_Lock && keysym <= XKB_KEY_ISO_Last_Group_Lock) ||
         (keysym >= XKB_KEY_ISO_Level5_Shift && keysym <= XKB_KEY_ISO_Level5_Lock) ||
         keysym == XKB_KEY_Mode_switch || keysym == XKB_KEY_Num_Lock;
}

bool isHeldModifier(XKeysym keysym) {
  switch (keysym) {
    case XKB_KEY_Caps_Lock:
    case XKB_KEY_Shift_Lock:
      return false;
    case XKB_KEY_Mode_switch:
    case XKB_KEY_ISO_Level3_Shift:
    case XKB_KEY_ISO_Level5_Shift:
      return true;
    default:
      return keysym >= XKB_KEY_Shift_L && keysym <= XKB_KEY_Hyper_R;
  }
}

}  // namespace quorlo
