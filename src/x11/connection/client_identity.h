#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace quorlo {

class XConnection;

// Who a window belongs to: the client's range of resource ids, and its process where the server knows it
// (the X-Resource extension; clients on other machines have none).
struct ClientIdentity {
  std::uint32_t resourceBase = 0;  // 0 when unknown
  std::int64_t processIdentifier = 0;

  bool isKnown() const { return resourceBase != 0 || processIdentifier != 0; }
  // Programs with several connections to the server are one by their process.
  bool isSameProgramAs(const ClientIdentity& other) const {
    return (resourceBase != 0 && resourceBase == other.resourceBase) ||
           (processIdentifier != 0 && processIdentifier == other.processIdentifier);
  }
};

// One round trip. Unknown for no window and for one that is gone.
ClientIdentity clientOfWindow(const XConnection& x, xcb_window_t window);

}  // namespace quorlo
