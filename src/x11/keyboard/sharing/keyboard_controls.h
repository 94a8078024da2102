#pragma once

#include "x11/connection/x_connection.h"

#include <cstdint>

namespace quorlo {

// How a keyboard repeats keys and whether it helps those who type with one hand (AccessX), as `xset r`,
// `xkbset` and settings daemons change it.

// What a keyboard that floats takes over. Keys pass two keyboards then, theirs and the session's: what
// delays, drops or consumes keys must happen once, on the session's.
enum class ControlsShare { whileFloating, whole };

// Makes the controls of `to` those of `from`; writes only when they differ. One round trip.
void copyControls(const XConnection& connection, std::uint16_t from, std::uint16_t to, ControlsShare share);

// The same for the bell, the key click and whether keys repeat at all, of which the server sends no notices.
void copyFeedback(const XConnection& connection, std::uint16_t from, std::uint16_t to);

// Modifiers latch on this keyboard when they are tapped.
bool hasStickyKeys(const XConnection& connection, std::uint16_t keyboard);

}  // namespace quorlo
