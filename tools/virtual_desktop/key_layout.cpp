#include "virtual_desktop/key_layout.h"

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <array>
#include <bit>
#include <stdexcept>

namespace quorlo {

KeyLayout::KeyLayout(xcb_connection_t* connection)
    : context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref) {
  xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                              XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr);
  const int device = xkb_x11_get_core_keyboard_device_id(connection);
  auto* keymap =
      xkb_x11_keymap_new_from_device(context_.get(), connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS);
  if (!keymap) throw std::runtime_error("The X server gives no keyboard map");
  keymap_ = {keymap, xkb_keymap_unref};
  compose_ = {xkb_compose_table_new_from_locale(context_.get(), "en_US.UTF-8", XKB_COMPOSE_COMPILE_NO_FLAGS),
              xkb_compose_table_unref};
}

KeyStroke KeyLayout::keyNamed(const std::string& name) const {
  const auto keysym = xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_NO_FLAGS);
  KeyStroke stroke;
  if (keysym == XKB_KEY_NoSymbol || !findKey(keysym, stroke)) {
    throw std::runtime_error("No key of the layout is called " + name);
  }
  return stroke;
}

std::vector<KeyStroke> KeyLayout::keysFor(char32_t character) const {
  KeyStroke stroke;
  if (character == U'\n') return {keyNamed("Return")};
  if (character == U'\t') return {keyNamed("Tab")};
  const auto keysym = xkb_utf32_to_keysym(character);
  if (findKey(keysym, stroke)) return {stroke};

  std::shared_ptr<xkb_compose_state> state(xkb_compose_state_new(compose_.get(), XKB_COMPOSE_STATE_NO_FLAGS),
                                           xkb_compose_state_unref);
  for (uint32_t dead = XKB_KEY_dead_grave; dead <= XKB_KEY_dead_greek; ++dead) {
    KeyStroke deadStroke;
    if (!findKey(dead, deadStroke)) continue;
    for (uint32_t base = XKB_KEY_space; base <= XKB_KEY_asciitilde; ++base) {
      xkb_compose_state_reset(state.get());
      xkb_compose_state_feed(state.get(), dead);
      xkb_compose_state_feed(state.get(), base);
      if (xkb_compose_state_get_status(state.get()) != XKB_COMPOSE_COMPOSED) continue;
      if (xkb_compose_state_get_one_sym(state.get()) == keysym && findKey(base, stroke))
        return {deadStroke, stroke};
    }
  }
  throw std::runtime_error("The layout has no keys for character " + std::to_string(character));
}

bool KeyLayout::findKey(uint32_t keysym, KeyStroke& stroke) const {
  // Low levels first: the plain key wins over Shift, Shift over AltGr.
  for (xkb_level_index_t level = 0; level < 4; ++level) {
    for (auto code = xkb_keymap_min_keycode(keymap_.get()); code <= 255; ++code) {
      const xkb_keysym_t* symbols = nullptr;
      const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), code, 0, level, &symbols);
      if (count != 1 || symbols[0] != keysym) continue;
      std::array<xkb_mod_mask_t, 8> masks{};
      const auto found =
          xkb_keymap_key_get_mods_for_level(keymap_.get(), code, 0, level, masks.data(), masks.size());
      if (found == 0) continue;
      auto best = masks[0];
      const auto lock = 1U << xkb_keymap_mod_get_index(keymap_.get(), XKB_MOD_NAME_CAPS);
      for (size_t i = 1; i < found; ++i) {
        const bool better = std::popcount(masks[i]) < std::popcount(best);
        if ((masks[i] & lock) == 0 && ((best & lock) != 0 || better)) best = masks[i];
      }
      stroke = {static_cast<uint8_t>(code), keysForModifiers(best)};
      return true;
    }
  }
  return false;
}

std::vector<uint8_t> KeyLayout::keysForModifiers(uint32_t mask) const {
  std::vector<uint8_t> keys;
  const auto add = [&](const char* modifier, uint32_t keysym) {
    const auto index = xkb_keymap_mod_get_index(keymap_.get(), modifier);
    KeyStroke stroke;
    if (index != XKB_MOD_INVALID && (mask & (1U << index)) != 0 && findKey(keysym, stroke)) {
      keys.push_back(stroke.keycode);
    }
  };
  add(XKB_MOD_NAME_SHIFT, XKB_KEY_Shift_L);
  add("Mod5", XKB_KEY_ISO_Level3_Shift);
  return keys;
}

}  // namespace quorlo
