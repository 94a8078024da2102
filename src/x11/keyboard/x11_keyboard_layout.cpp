#include "x11/keyboard/x11_keyboard_layout.h"

#include "x11/keyboard/keyboard_service.h"

#include <xkbcommon/xkbcommon.h>

namespace quorlo {

std::optional<KeyCode> X11KeyboardLayout::keyCodeForNamedKey(NamedKey name) const {
  return keyCodeForKeysym(name == NamedKey::deleteBackward ? XKB_KEY_BackSpace : XKB_KEY_Left);
}

std::u16string X11KeyboardLayout::labelOfKey(KeyCode code) const {
  const auto* map = keyboard_.map();
  if (map == nullptr) return {};
  const auto layout = keyboard_.layout();
  const auto keysym = xkb_keysym_to_upper(map->keysym(map->keyForCode(code, layout), layout));
  const auto character = xkb_keysym_to_utf32(keysym);
  if (character <= U' ' || character == 0x7F || character > 0xFFFF) return {};
  return {static_cast<char16_t>(character)};
}

std::optional<Shortcut> X11KeyboardLayout::shortcutOf(const NativeKeyPress& press) const {
  if (press.keycode > 0xFF || isModifier(press.keysym)) return std::nullopt;
  const auto code = keyCodeFor(static_cast<XKeycode>(press.keycode), press.keysym);
  if (code == kNoKeyCode) return std::nullopt;
  return Shortcut{code, flagsOfState(press.modifiers)};
}

std::optional<KeyCode> X11KeyboardLayout::keyCodeForKeysym(std::uint32_t keysym) const {
  const auto* map = keyboard_.map();
  if (map == nullptr || keysym == XKB_KEY_NoSymbol) return std::nullopt;
  const auto keycode = map->keyFor(keysym, keyboard_.layout());
  const auto code = keycode != 0 ? keyCodeFor(keycode, keysym) : kNoKeyCode;
  if (code == kNoKeyCode) return std::nullopt;
  return code;
}

}  // namespace quorlo
