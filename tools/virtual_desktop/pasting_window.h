#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quorlo {

// The window of an application that can be typed and pasted into, on a connection of its own, with the
// process identifier by which readers of the clipboard are known. Its owner handles the events.
class PastingWindow {
 public:
  // Throws std::runtime_error without a server. The window asks for the focus.
  PastingWindow(const std::string& display, std::uint16_t width, std::uint16_t height);

  xcb_connection_t* connection() const { return connection_.get(); }
  xcb_window_t window() const { return window_; }
  xcb_atom_t clipboard() const { return clipboard_; }
  xcb_atom_t utf8() const { return utf8_; }
  xcb_atom_t atom(const char* name) const;

  // Asks for the clipboard's text; a selection notice is the answer.
  void readClipboard(xcb_timestamp_t time) const;
  // Absent when the answer is no text.
  std::optional<std::string> takeText(const xcb_selection_notify_event_t& answer) const;

 private:
  std::shared_ptr<xcb_connection_t> connection_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_atom_t clipboard_ = XCB_ATOM_NONE;
  xcb_atom_t utf8_ = XCB_ATOM_NONE;
};

}  // namespace quorlo
