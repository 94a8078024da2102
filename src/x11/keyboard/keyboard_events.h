#pragma once

#include "x11/connection/x_connection.h"
#include "x11/keyboard/key_stream.h"

#include <cstdint>
#include <variant>

namespace quorlo {

// A grabbed keyboard was typed on.
struct KeyTyped {
  PhysicalKey key;
  std::uint32_t time;  // milliseconds of the server
};
// Keyboards were plugged in or out, enabled, disabled, or one that is not grabbed is typed on.
struct KeyboardsChanged {};
// Any keyboard's, also one that has nothing to do with this session.
struct MapChanged {
  std::uint16_t device;
};
// Of the session's keyboard, by a key or a request. What holds by now is to be asked for: keys pressed since
// may have changed it again.
struct LocksChanged {};
struct ControlsChanged {};

using KeyboardChange =
    std::variant<std::monostate, KeyTyped, KeyboardsChanged, MapChanged, LocksChanged, ControlsChanged>;

// What an X server tells of its keyboards.
class KeyboardEvents {
 public:
  struct Numbers {
    std::uint8_t inputOpcode = 0;    // of XInput 2
    std::uint8_t xkbFirstEvent = 0;  // 0 without XKB
    std::uint16_t masterKeyboard = 0;
    std::uint16_t xtestKeyboard = 0;
  };

  KeyboardEvents() = default;
  explicit KeyboardEvents(Numbers numbers) : numbers_(numbers) {}

  void select(const XConnection& connection) const;
  KeyboardChange read(const xcb_generic_event_t& event) const;

 private:
  KeyboardChange readInput(const xcb_ge_generic_event_t& event) const;
  KeyboardChange readXkb(const xcb_generic_event_t& event) const;

  Numbers numbers_;
};

}  // namespace quorlo
