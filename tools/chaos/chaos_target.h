#pragma once

#include "virtual_desktop/pasting_window.h"

#include <xcb/xcb.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace quorlo {

class VirtualDesktop;

// The application that is typed into: a window with a text, which BackSpace erases from and Ctrl+V pastes to.
// A paste goes to the end of the text when it comes, as in toolkits that do not wait for it. Has a thread of
// its own; everything may be called from any.
class ChaosTarget {
 public:
  using Clock = std::chrono::steady_clock;

  // The window is active when this returns.
  explicit ChaosTarget(VirtualDesktop& desktop);
  ~ChaosTarget();
  ChaosTarget(const ChaosTarget&) = delete;
  ChaosTarget& operator=(const ChaosTarget&) = delete;

  xcb_window_t window() const { return window_.window(); }

  // The text so far, ASCII alone: other characters are those of other programs.
  std::string text() const;
  // When a key or a paste arrived, in order.
  std::vector<Clock::time_point> arrivals() const;
  void clear();

 private:
  void serve();
  void handle(const xcb_generic_event_t& event);
  void keyPressed(const xcb_key_press_event_t& event);
  void pasted(const xcb_selection_notify_event_t& event);
  void readMap();
  void append(const std::string& text);

  PastingWindow window_;
  std::shared_ptr<xkb_context> context_;
  std::shared_ptr<xkb_state> state_;
  std::uint8_t mapEvent_ = 0;

  mutable std::mutex mutex_;
  std::string text_;
  std::vector<Clock::time_point> arrivals_;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace quorlo
