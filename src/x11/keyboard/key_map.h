#pragma once

#include "x11/keyboard/key_translation.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct xcb_connection_t;
struct xkb_keymap;

namespace quorlo {

// What the keys of a keyboard produce: one or more layouts of it, of which one is in effect at a time.
// Immutable; each thread needs one of its own.
class KeyMap {
 public:
  using LayoutIndex = std::uint32_t;

  // The map of the device, or of the core keyboard. Absent when the server does not tell it. Waits for
  // the server.
  static std::optional<KeyMap> ofServer(xcb_connection_t* connection, int device);
  // Layout, variant and options as setxkbmap takes them. Absent when there is no such layout.
  static std::optional<KeyMap> named(const std::string& layout, const std::string& variant,
                                     const std::string& options);

  xkb_keymap* get() const { return map_.get(); }

  // What the key produces at the level of a layout; level 0 is without modifiers.
  XKeysym keysym(XKeycode keycode, LayoutIndex layout, std::uint32_t level = 0) const;
  // The key that produces the keysym at the level of the layout, or 0.
  XKeycode keyFor(XKeysym keysym, LayoutIndex layout, std::uint32_t level = 0) const;
  // The same for the first layout that has one, beginning with the given one.
  XKeycode keyForInAnyLayout(XKeysym keysym, LayoutIndex layout, std::uint32_t level = 0) const;
  // The key to press for a key code: by name or by place. 0 for none.
  XKeycode keyForCode(KeyCode code, LayoutIndex layout) const;

  bool isModifierKey(XKeycode keycode) const;
  bool isHeldModifierKey(XKeycode keycode) const;

 private:
  explicit KeyMap(std::shared_ptr<xkb_keymap> map) : map_(std::move(map)) {}
  template <class Test>
  bool anyLayout(XKeycode keycode, Test test) const;

  std::shared_ptr<xkb_keymap> map_;
};

}  // namespace quorlo
