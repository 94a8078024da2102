#pragma once

#include "base/observers.h"
#include "base/result.h"
#include "platform/main_queue.h"
#include "platform/mouse_monitor.h"
#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace quorlo {

// Follows the pointers' raw events (XInput 2.1), which arrive whatever window or grab takes the click. On a
// server without them no click is ever reported.
class X11MouseMonitor : public MouseMonitor {
 public:
  struct Options {
    std::string display;
    std::function<void()> connectionLost;  // once, on the monitor's thread
  };

  static Result<std::unique_ptr<X11MouseMonitor>> connect(Options options, MainQueue& queue);
  ~X11MouseMonitor() override;

  Subscription observeMouseDown(std::function<void(MouseButton)> handler) override;

 private:
  X11MouseMonitor(std::unique_ptr<XConnection> x, Options options, MainQueue& queue);
  void handleEvent(const xcb_generic_event_t& event);
  void watch(bool on);

  std::unique_ptr<XConnection> x_;
  MainQueue& queue_;
  XEventLoop loop_;
  std::uint8_t inputOpcode_ = 0;  // 0: the server has no such events

  // Main thread.
  struct Handlers {
    Observers<MouseButton> list;
    int count = 0;
  };
  std::shared_ptr<Handlers> handlers_ = std::make_shared<Handlers>();
};

}  // namespace quorlo
