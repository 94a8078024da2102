#pragma once

#include "x11/connection/x_connection.h"

namespace quorlo {

// Whether the one window is the other or lies within it. A round trip for each level in between.
bool isInside(const XConnection& x, xcb_window_t inner, xcb_window_t outer);

}  // namespace quorlo
