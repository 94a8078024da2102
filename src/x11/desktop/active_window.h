#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <string>

namespace quorlo {

// The window that has the keyboard, as the window manager tells it.
struct ActiveWindow {
  xcb_window_t window = XCB_WINDOW_NONE;
  std::int64_t processIdentifier = 0;  // 0 when unknown
  std::string bundleIdentifier;        // empty when nothing names the application
  std::string windowClass;             // the class of WM_CLASS; empty when there is none
  bool isOwn = false;                  // a window of this program
};

}  // namespace quorlo
