#pragma once

#include "x11/connection/x_connection.h"
#include "x11/keyboard/sharing/keyboard_maps.h"

#include <cstdint>
#include <set>

namespace quorlo {

// The maps of the grabbed keyboards and of the XTEST keyboard, which applications get their keys from. The
// XTEST keyboard takes on the map of the keyboard that is typed on. What other programs change of the
// session's map reaches the XTEST keyboard, but not the grabbed ones, which float: they follow.
//
// Only two things make it write: a key of another keyboard, and an XTEST map that this object has not seen.
// It writes to the grabbed keyboards in answer to the second, never to the XTEST keyboard, so that no write
// can cause another. One thread.
class MapSharing {
 public:
  using Device = std::uint16_t;

  MapSharing(const XConnection& connection, Device xtestKeyboard)
      : connection_(&connection), xtestKeyboard_(xtestKeyboard) {}

  // Makes the keys pressed from now on those of this keyboard. True when the XTEST map is another than after
  // the last call of either function.
  bool useMapOf(Device keyboard, const std::set<Device>& grabbed);
  // The session's map may have changed.
  bool follow(const std::set<Device>& grabbed);
  // The map of a grabbed keyboard may have changed.
  void forget(Device keyboard);
  // The keyboards are let go: from here on the server keeps their maps itself.
  void forgetAll() {
    source_ = 0;
    known_ = {};
  }

 private:
  const XConnection* connection_;
  Device xtestKeyboard_;
  Device source_ = 0;  // the keyboard whose map the XTEST keyboard has; 0 when in doubt
  KeyboardMap known_;  // of the XTEST keyboard
};

}  // namespace quorlo
