#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct xcb_connection_t;
struct xkb_context;
struct xkb_keymap;
struct xkb_compose_table;

namespace quorlo {

// One key press with the modifiers that it needs, as X keycodes.
struct KeyStroke {
  uint8_t keycode = 0;
  std::vector<uint8_t> modifiers;
};

// The keyboard map that the X server has at construction, read backwards: from characters to keys.
class KeyLayout {
 public:
  // Throws std::runtime_error.
  explicit KeyLayout(xcb_connection_t* connection);

  // A key named as in keysymdef.h without XK_ ("Return", "Shift_L", "ISO_Level3_Shift", "a"), unshifted where
  // possible. Throws std::runtime_error when no key has it.
  KeyStroke keyNamed(const std::string& name) const;
  // The key, or the dead key and the key after it, for one character; '\n' is Return, '\t' is Tab. Throws
  // std::runtime_error when the layout does not have it.
  std::vector<KeyStroke> keysFor(char32_t character) const;

 private:
  bool findKey(uint32_t keysym, KeyStroke& stroke) const;
  std::vector<uint8_t> keysForModifiers(uint32_t mask) const;

  std::shared_ptr<xkb_context> context_;
  std::shared_ptr<xkb_keymap> keymap_;
  std::shared_ptr<xkb_compose_table> compose_;
};

}  // namespace quorlo
