#pragma once

#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace quorlo {

// Hands data that is too large for one property to other programs piece by piece (ICCCM 2.7.2, "INCR
// Properties"). On the loop's thread.
class IncrSender {
 public:
  struct Transfer {
    xcb_window_t requestor = XCB_WINDOW_NONE;
    xcb_atom_t property = XCB_ATOM_NONE;
    xcb_atom_t type = XCB_ATOM_NONE;
    std::uint8_t format = 8;
    std::shared_ptr<const std::vector<std::uint8_t>> data;
    std::function<void()> progressed;  // a piece was taken
    std::function<void()> finished;    // all of it was taken; not called for a requestor that gives up
  };

  IncrSender(XConnection& x, XEventLoop& loop) : x_(x), loop_(loop) {}

  // The most that is sent in one property.
  std::size_t chunkBytes() const;

  // Announces the data in the requestor's property; the caller then tells the requestor of it.
  void start(Transfer transfer);
  void handleEvent(const xcb_generic_event_t& event);

 private:
  struct State {
    Transfer transfer;
    std::size_t sent = 0;
    XEventLoop::Clock::time_point lastActivity;
  };
  using Key = std::pair<xcb_window_t, xcb_atom_t>;

  void sendNext(const Key& key);
  void end(const Key& key);
  void dropStalled();

  XConnection& x_;
  XEventLoop& loop_;
  std::map<Key, State> transfers_;
  bool timerRunning_ = false;
};

}  // namespace quorlo
