#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace quorlo {

// What a window shows, as the screen has it: another window in front of it is in the picture too.
struct WindowPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  // row by row

  // Throws std::runtime_error when the window is gone or not wholly on the screen.
  static WindowPicture of(xcb_connection_t* connection, xcb_window_t window);
};

// The columns in which the pictures differ; all of them when the sizes do. A caret takes one or two, a letter
// more.
int differingColumns(const WindowPicture& left, const WindowPicture& right);

}  // namespace quorlo
