#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <xcb/xcb.h>

namespace quorlo {

class TargetWindow;
class VirtualDesktop;

// Measures how long a window of Quorlo takes from a key press until it has the keyboard and shows its
// contents. The window is closed by Escape each time.
class OpeningMeter {
 public:
  // The part of the window that is looked at: where contents differ from row to row, and nothing blinks.
  struct Part {
    std::int16_t x, y;
    std::uint16_t width, height;
  };

  // The references must outlive the meter.
  OpeningMeter(VirtualDesktop& desktop, TargetWindow& target, Part part);

  // In milliseconds from the call of `press` on. Throws std::runtime_error when the window does not open,
  // shows nothing or keeps the focus.
  double openOnce(const std::function<void()>& press);

 private:
  using Clock = std::chrono::steady_clock;

  xcb_window_t waitForOtherActiveWindow();
  Clock::time_point whenComplete(xcb_window_t window);
  std::vector<std::uint8_t> pictureOf(xcb_window_t window);

  VirtualDesktop& desktop_;
  TargetWindow& target_;
  Part part_;
  std::shared_ptr<xcb_connection_t> connection_;
};

}  // namespace quorlo
