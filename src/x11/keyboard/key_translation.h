#pragma once

#include "platform/key_codes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quorlo {

// Translation between X keys and the program's key codes. Pure functions.
//
// Keys that have a name (Return, the arrows, F1) are translated by their keysym, so that they keep their
// meaning on every layout; all others by their place on the keyboard, as the codes demand. The places are
// those of evdev (X keycode = evdev code + 8), which every X server on Linux uses.
// Keysyms: X11/keysymdef.h. Key codes: the virtual key codes of the home platform's ANSI keyboard.

using XKeycode = std::uint8_t;
using XKeysym = std::uint32_t;

// A key that has no code there, for example one that changes the volume.
inline constexpr KeyCode kNoKeyCode = 0xFFFF;

KeyCode keyCodeFor(XKeycode keycode, XKeysym keysym);

// 0 when the code stands for no place on the keyboard.
XKeycode keycodeAtPlace(KeyCode code);
// XKB_KEY_NoSymbol when the code is one of a place.
XKeysym keysymOfNamedKey(KeyCode code);

// What a key press that produces this keysym carries as its characters; absent when that is left to the
// keysym's own character.
std::optional<char16_t> charactersOfNamedKey(XKeysym keysym);

// Modifiers as X numbers them in its events, and those among them that have a flag.
ModifierFlags flagsOfState(std::uint32_t modifiers);
// Of kShortcutModifiers; other flags count for nothing.
std::uint32_t stateOfFlags(ModifierFlags flags);

// Keys that change what other keys do: never reported, and passed on as they are.
bool isModifier(XKeysym keysym);
// Those in effect only while held, which may be let go and pressed again; not Caps Lock and the like.
bool isHeldModifier(XKeysym keysym);

}  // namespace quorlo
