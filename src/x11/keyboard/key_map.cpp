#include "x11/keyboard/key_map.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace quorlo {

namespace {

std::shared_ptr<xkb_context> newContext() {
  std::shared_ptr<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS),
                                       [](xkb_context* owned) { xkb_context_unref(owned); });
  xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
  return context;
}

std::shared_ptr<xkb_keymap> owned(xkb_keymap* map) {
  if (map == nullptr) return nullptr;
  return {map, [](xkb_keymap* keymap) { xkb_keymap_unref(keymap); }};
}

}  // namespace

std::optional<KeyMap> KeyMap::ofServer(xcb_connection_t* connection, int device) {
  const auto context = newContext();
  auto map =
      owned(xkb_x11_keymap_new_from_device(context.get(), connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!map) return std::nullopt;
  return KeyMap(std::move(map));
}

std::optional<KeyMap> KeyMap::named(const std::string& layout, const std::string& variant,
                                    const std::string& options) {
  const auto context = newContext();
  const xkb_rule_names names{"evdev", "pc105", layout.c_str(), variant.c_str(), options.c_str()};
  auto map = owned(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!map) return std::nullopt;
  return KeyMap(std::move(map));
}

XKeysym KeyMap::keysym(XKeycode keycode, LayoutIndex layout, std::uint32_t level) const {
  const auto layouts = xkb_keymap_num_layouts_for_key(map_.get(), keycode);
  if (layouts == 0) return XKB_KEY_NoSymbol;
  const xkb_keysym_t* keysyms = nullptr;
  // Keys with fewer layouts than the map, such as the arrows, mean the same in all of them.
  const int count =
      xkb_keymap_key_get_syms_by_level(map_.get(), keycode, layout < layouts ? layout : 0, level, &keysyms);
  return count > 0 ? keysyms[0] : XKeysym{XKB_KEY_NoSymbol};
}

XKeycode KeyMap::keyFor(XKeysym keysym, LayoutIndex layout, std::uint32_t level) const {
  const auto last = xkb_keymap_max_keycode(map_.get());
  for (auto keycode = xkb_keymap_min_keycode(map_.get()); keycode <= last && keycode <= 255; ++keycode) {
    const auto candidate = static_cast<XKeycode>(keycode);
    if (this->keysym(candidate, layout, level) == keysym) return candidate;
  }
  return 0;
}

XKeycode KeyMap::keyForInAnyLayout(XKeysym keysym, LayoutIndex layout, std::uint32_t level) const {
  if (const auto keycode = keyFor(keysym, layout, level); keycode != 0) return keycode;
  for (LayoutIndex other = 0; other < xkb_keymap_num_layouts(map_.get()); ++other) {
    if (const auto keycode = keyFor(keysym, other, level); keycode != 0) return keycode;
  }
  return 0;
}

XKeycode KeyMap::keyForCode(KeyCode code, LayoutIndex layout) const {
  if (const auto name = keysymOfNamedKey(code); name != XKB_KEY_NoSymbol) {
    if (const auto keycode = keyFor(name, layout); keycode != 0) return keycode;
  }
  return keycodeAtPlace(code);
}

template <class Test>
bool KeyMap::anyLayout(XKeycode keycode, Test test) const {
  const auto layouts = xkb_keymap_num_layouts_for_key(map_.get(), keycode);
  for (LayoutIndex layout = 0; layout < layouts; ++layout) {
    if (test(keysym(keycode, layout))) return true;
  }
  return false;
}

bool KeyMap::isModifierKey(XKeycode keycode) const {
  return anyLayout(keycode, isModifier);
}
bool KeyMap::isHeldModifierKey(XKeycode keycode) const {
  return anyLayout(keycode, isHeldModifier);
}

}  // namespace quorlo
