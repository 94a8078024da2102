#pragma once

#include "virtual_desktop/pasting_window.h"

#include <xcb/xcb.h>

#include <chrono>
#include <string>
#include <utility>

namespace quorlo {

// The smallest application that can be pasted into: a window that asks for the clipboard on Ctrl+V and
// notes when the text has come. It is also the owner of the clipboard before each expansion.
class TargetWindow {
 public:
  using Clock = std::chrono::steady_clock;

  // Throws std::runtime_error without a server. The window asks for the focus.
  TargetWindow(const std::string& display, xcb_keycode_t pasteKey);

  xcb_window_t window() const { return window_.window(); }

  void ownClipboard(std::string text);

  // Handles events until a pasted text has come, and says when; throws after two seconds.
  Clock::time_point waitForPaste();
  // Handles events for a while.
  void serve(std::chrono::milliseconds time);

  const std::string& pasted() const { return pasted_; }

  // When the last key press was handled, and the longest time without one since the call before.
  Clock::time_point lastPress() const { return lastPress_; }
  Clock::duration takeLongestGap() { return std::exchange(longestGap_, {}); }

 private:
  bool serveUntil(Clock::time_point end, bool stopAtPaste);
  void handle(const xcb_generic_event_t& event);
  void answer(const xcb_selection_request_event_t& request);

  PastingWindow window_;
  xcb_keycode_t pasteKey_;
  xcb_atom_t targets_;
  std::string owned_;
  std::string pasted_;
  Clock::time_point pastedAt_;
  bool hasPaste_ = false;
  Clock::time_point lastPress_ = Clock::now();
  Clock::duration longestGap_{};
};

}  // namespace quorlo
