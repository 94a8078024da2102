#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace quorlo {

// The window that a paste chord is about to reach. 0 for what is not known.
struct PasteTarget {
  xcb_window_t window = XCB_WINDOW_NONE;
  std::int64_t processIdentifier = 0;
};

// What the chord makes the application paste.
enum class PasteSelection {
  clipboard,
  clipboardAndPrimary,  // terminals: Shift+Insert pastes PRIMARY in most of them
};

}  // namespace quorlo
