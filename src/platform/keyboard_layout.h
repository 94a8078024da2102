#pragma once

#include "platform/key_codes.h"

#include <optional>

namespace quorlo {

enum class NamedKey { deleteBackward, leftArrow };

// The keyboard layout in use. Main thread.
class KeyboardLayout {
 public:
  virtual ~KeyboardLayout() = default;

  // The key that produces the character without modifiers, or the named key; absent when the layout has
  // none.
  virtual std::optional<KeyCode> keyCodeForCharacter(char16_t character) const = 0;
  virtual std::optional<KeyCode> keyCodeForNamedKey(NamedKey name) const = 0;
};

}  // namespace quorlo
