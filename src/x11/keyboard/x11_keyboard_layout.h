#pragma once

#include "platform/keyboard_layout.h"

namespace quorlo {

class KeyboardService;

// The XKB map that the server has now, in the layout that is in effect now.
class X11KeyboardLayout : public KeyboardLayout {
 public:
  explicit X11KeyboardLayout(const KeyboardService& keyboard) : keyboard_(keyboard) {}

  std::optional<KeyCode> keyCodeForNamedKey(NamedKey name) const override;
  std::u16string labelOfKey(KeyCode code) const override;
  std::optional<Shortcut> shortcutOf(const NativeKeyPress& press) const override;

 private:
  std::optional<KeyCode> keyCodeForKeysym(std::uint32_t keysym) const;

  const KeyboardService& keyboard_;
};

}  // namespace quorlo
