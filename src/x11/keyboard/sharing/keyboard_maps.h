#pragma once

#include "x11/connection/x_connection.h"
#include "x11/keyboard/sharing/key_definitions.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quorlo {

// The names of the parts that the server builds a map from, in the order in which it is asked for them.
struct KeyboardComponents {
  std::string keycodes, types, compatibility, symbols;
  bool operator==(const KeyboardComponents&) const = default;
};

// The map of a keyboard: what it was built from, and what its keys mean by now.
struct KeyboardMap {
  KeyboardComponents components;
  std::optional<KeyDefinitions> keys;  // absent when the keyboard is gone
  bool operator==(const KeyboardMap&) const = default;
};

// These wait for the server: a map that differs by single keys takes a round trip or two, one of other
// components some 20 ms, in which the server builds it.
KeyboardMap readKeyboardMap(const XConnection& connection, std::uint16_t device);
// Makes the keyboard produce what the map says. Writes nothing that it has already.
void giveMap(const XConnection& connection, std::uint16_t device, const KeyboardMap& wanted);
// Does to the keyboard what turned one map into another: single keys only where single keys were changed, so
// that a layout of its own stays otherwise.
void giveMapChange(const XConnection& connection, std::uint16_t device, const KeyboardMap& before,
                   const KeyboardMap& after);

}  // namespace quorlo
