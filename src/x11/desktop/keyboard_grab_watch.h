#pragma once

#include "x11/connection/x_connection.h"

#include <atomic>
#include <cstdint>
#include <optional>

namespace quorlo {

// Knows whether a program has the keyboard for itself: a lock screen, a passphrase prompt, a launcher. A
// popup of the active program, a list of completions for instance, has it too, but what is typed then is
// meant for that program as before, so it does not count.
//
// The server names no owner of a grab. It reports a grab to the window with the focus and to the window for
// which the keyboard was grabbed, so the watch selects these events on the former and on each new window.
// Whether there is a grab at all, also one older than the watch, is asked by a request that cannot succeed.
//
// Lives on the thread that reads the connection's events, but for `keyboardIsTaken`.
class KeyboardGrabWatch {
 public:
  // What the connection must select on the root window for the watch.
  static constexpr std::uint32_t kRootEvents =
      XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;

  explicit KeyboardGrabWatch(XConnection& x);

  // Once the events of the root window are selected.
  void begin();
  // Takes note of an event.
  void handleEvent(const xcb_generic_event_t& event);
  // Looks at the state anew when an event or another active window asks for it; otherwise free.
  void settle(xcb_window_t activeWindow);

  // As of the last `settle`. Any thread.
  bool keyboardIsTaken() const { return isTaken_; }

 private:
  void noteFocusEvent(const xcb_focus_in_event_t& event);
  void followFocus(xcb_window_t focus);
  bool isPopupOf(xcb_window_t program) const;
  bool hasPopup(xcb_window_t program) const;
  xcb_window_t outermostOfItsProgram(xcb_window_t window) const;

  XConnection& x_;
  xcb_window_t probe_;  // never shown
  xcb_window_t focus_ = XCB_WINDOW_NONE;
  xcb_window_t active_ = XCB_WINDOW_NONE;
  std::optional<xcb_window_t> grabWindow_;  // absent while there is no grab or none is known
  bool mustLook_ = true;
  std::atomic<bool> isTaken_ = false;
};

// Whether any client has grabbed the session's keyboard. One round trip, no side effect. `unmapped` is a
// window of this connection that is not on the screen.
bool keyboardIsGrabbed(const XConnection& x, xcb_window_t unmapped);

}  // namespace quorlo
