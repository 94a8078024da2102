#pragma once

#include "x11/connection/x_connection.h"
#include "x11/selection/paste_tracker.h"

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace quorlo {

// Finds out when the target of a late paste can no longer be meant: its window is gone, or the target is
// not busy (it answers a ping, which comes after the chord) and the user now begins a chord of his own or
// clicks in that window. What the target reads then is the user's own paste.
//
// Time alone ends nothing. A program may answer pings while a part of it hangs, as browsers do.
//
// Watches the input only while there are late pastes. On the loop's thread.
class LatePasteWatch {
 public:
  using Over = std::function<void(PasteTracker::PasteId)>;

  LatePasteWatch(XConnection& x, Over gone, Over ignored);

  // The pastes that are late now.
  void follow(const std::vector<PasteTracker::Late>& pastes);
  // True for one whose target has shown that it is not busy.
  bool isIgnored(PasteTracker::PasteId paste) const;

  void handleEvent(const xcb_generic_event_t& event);

 private:
  struct Watched {
    xcb_window_t window = XCB_WINDOW_NONE;
    bool isBusy = false;  // has not answered a ping
  };

  void begin(PasteTracker::PasteId paste, xcb_window_t window);
  void selectEvents();
  void userActs();
  bool beginsChord(xcb_keycode_t key) const;
  void end(const Over& how, const std::function<bool(const Watched&)>& isOver);

  XConnection& x_;
  Over gone_;
  Over ignored_;
  std::uint8_t inputOpcode_ = 0;  // 0: the server lacks raw events
  std::map<PasteTracker::PasteId, Watched> watched_;
  bool seesInput_ = false;
  bool seesPongs_ = false;
};

}  // namespace quorlo
