#pragma once

#include "platform/key_codes.h"
#include "platform/shortcut.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quorlo {

enum class NamedKey { deleteBackward, leftArrow };

// A key press as the display server tells it: with Qt nativeScanCode(), nativeVirtualKey() and
// nativeModifiers() of a QKeyEvent.
struct NativeKeyPress {
  std::uint32_t keycode = 0;
  std::uint32_t keysym = 0;
  std::uint32_t modifiers = 0;
};

// The keyboard layout in use. Main thread.
class KeyboardLayout {
 public:
  virtual ~KeyboardLayout() = default;

  // Absent when the layout has no such key.
  virtual std::optional<KeyCode> keyCodeForNamedKey(NamedKey name) const = 0;

  // What is printed on a key that types a character, "Q" or "Ö"; empty for other keys and codes without
  // a key. Names of keys such as Space come from shortcutText().
  virtual std::u16string labelOfKey(KeyCode code) const = 0;

  // The combination that a press stands for, to record one; absent while only modifiers are pressed and for
  // keys without a code.
  virtual std::optional<Shortcut> shortcutOf(const NativeKeyPress& press) const = 0;
};

}  // namespace quorlo
