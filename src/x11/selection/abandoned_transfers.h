#pragma once

#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"

#include <string_view>
#include <vector>

namespace quorlo {

// The property of its own windows into which this program has selections converted.
inline constexpr std::string_view kSelectionProperty = "QUORLO_SELECTION";

// Windows of transfers that are not waited for any more. They stay until the owner has finished: there are
// owners that do not survive the window's going away. On the loop's thread.
class AbandonedTransfers {
 public:
  AbandonedTransfers(XConnection& x, XEventLoop& loop) : x_(x), loop_(loop) {}
  ~AbandonedTransfers();
  AbandonedTransfers(const AbandonedTransfers&) = delete;
  AbandonedTransfers& operator=(const AbandonedTransfers&) = delete;

  // Takes over a window; `receiving` when its incremental transfer has begun.
  void add(xcb_window_t window, bool receiving);

  // The owner has answered the request of a window, or has written a part of the contents. False when the
  // window is not among these.
  bool answered(xcb_window_t window, bool refused);
  bool written(xcb_window_t window);

 private:
  struct Transfer {
    xcb_window_t window = XCB_WINDOW_NONE;
    bool receiving = false;
    XEventLoop::Clock::time_point lastActivity;
  };

  void goOn(Transfer& transfer, bool refused);
  void dropStalled();

  XConnection& x_;
  XEventLoop& loop_;
  std::vector<Transfer> transfers_;
  bool timerRunning_ = false;
};

}  // namespace quorlo
