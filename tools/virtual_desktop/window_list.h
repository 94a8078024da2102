#pragma once

#include <sys/types.h>
#include <xcb/xcb_ewmh.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// The windows that the window manager knows, and which one is active. Does not own the connection.
class WindowList {
 public:
  // Throws std::runtime_error.
  explicit WindowList(xcb_connection_t* connection);
  ~WindowList();
  WindowList(const WindowList&) = delete;
  WindowList& operator=(const WindowList&) = delete;

  bool managerRuns();  // a window manager has announced itself
  std::vector<xcb_window_t> all();
  xcb_window_t active();                     // 0 when there is none
  std::string classOf(xcb_window_t window);  // the second part of WM_CLASS
  std::string titleOf(xcb_window_t window);
  pid_t processOf(xcb_window_t window);  // as the server knows it (XRes); 0 when unknown

  struct Rectangle {
    int x, y, width, height;
  };
  Rectangle placeOf(xcb_window_t window);  // in screen coordinates

  // The newest window of the process; throws std::runtime_error when none appears in time.
  xcb_window_t waitForWindowOf(pid_t process);
  // Returns once the window is active and stays so; throws std::runtime_error when it does not become so.
  void activate(xcb_window_t window);

 private:
  bool isInFront(xcb_window_t window);  // active, and its program has the keyboard's focus

  xcb_connection_t* connection_;
  xcb_ewmh_connection_t ewmh_{};
  xcb_window_t root_;
};

}  // namespace quorlo
