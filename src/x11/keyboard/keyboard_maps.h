#pragma once

#include "x11/connection/x_connection.h"

#include <cstdint>

namespace quorlo {

// Makes the keyboard `to` produce what the keyboard `from` produces, by having the server build the map
// from the components that it was built of there. Does nothing, and returns false, when they are the same.
// Waits for the server, which needs some 20 ms for a map.
bool copyKeyboardMap(const XConnection& connection, std::uint16_t from, std::uint16_t to);

// The same for keysyms that were changed one by one, as xmodmap does. Leaves a keyboard of other components
// alone: it has a layout of its own.
void copyKeysyms(const XConnection& connection, std::uint16_t from, std::uint16_t to);

}  // namespace quorlo
