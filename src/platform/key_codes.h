#pragma once

#include <cstdint>

namespace quorlo {

// Virtual key codes: positions on the keyboard, numbered as in the stored formats (an ANSI keyboard of
// the home platform). An adapter translates them to and from its own system's codes.
using KeyCode = std::uint16_t;

namespace key {
inline constexpr KeyCode kV = 9;
inline constexpr KeyCode kReturn = 36;
inline constexpr KeyCode kTab = 48;
inline constexpr KeyCode kSpace = 49;
inline constexpr KeyCode kBackspace = 51;
inline constexpr KeyCode kEscape = 53;
inline constexpr KeyCode kKeypadEnter = 76;
inline constexpr KeyCode kHelp = 114;  // the Insert key of a PC keyboard
inline constexpr KeyCode kHome = 115;
inline constexpr KeyCode kPageUp = 116;
inline constexpr KeyCode kForwardDelete = 117;
inline constexpr KeyCode kEnd = 119;
inline constexpr KeyCode kPageDown = 121;
inline constexpr KeyCode kLeftArrow = 123;
inline constexpr KeyCode kRightArrow = 124;
inline constexpr KeyCode kDownArrow = 125;
inline constexpr KeyCode kUpArrow = 126;
}  // namespace key

// Modifier flags, with the bits of the stored formats. The bits below 0x10000 name the device's own
// key (0x8: left Command) or are set on every event (0x100).
using ModifierFlags = std::uint32_t;

namespace modifier {
inline constexpr ModifierFlags kCapsLock = 0x10000;
inline constexpr ModifierFlags kShift = 0x20000;
inline constexpr ModifierFlags kControl = 0x40000;
inline constexpr ModifierFlags kOption = 0x80000;
inline constexpr ModifierFlags kCommand = 0x100000;
inline constexpr ModifierFlags kLeftCommandEvent = 0x100008;
// A key pressed with one of these is a command, not typing. The level that AltGr chooses has no flag.
inline constexpr ModifierFlags kCommands = kControl | kOption | kCommand;
}  // namespace modifier

// Keys without text carry one of these private-use characters as their characters, from
// kFirstFunctionKeyCharacter up: the arrows first, then F1 to F35, then the editing keys.
inline constexpr char16_t kFirstFunctionKeyCharacter = 0xF700;
inline constexpr char16_t kUpArrowCharacter = 0xF700;
inline constexpr char16_t kDownArrowCharacter = 0xF701;
inline constexpr char16_t kLeftArrowCharacter = 0xF702;
inline constexpr char16_t kRightArrowCharacter = 0xF703;
inline constexpr char16_t kF1Character = 0xF704;
inline constexpr char16_t kInsertCharacter = 0xF727;
inline constexpr char16_t kForwardDeleteCharacter = 0xF728;
inline constexpr char16_t kHomeCharacter = 0xF729;
inline constexpr char16_t kEndCharacter = 0xF72B;
inline constexpr char16_t kPageUpCharacter = 0xF72C;
inline constexpr char16_t kPageDownCharacter = 0xF72D;
inline constexpr char16_t kPrintScreenCharacter = 0xF72E;
inline constexpr char16_t kScrollLockCharacter = 0xF72F;
inline constexpr char16_t kPauseCharacter = 0xF730;
inline constexpr char16_t kMenuCharacter = 0xF735;

}  // namespace quorlo
