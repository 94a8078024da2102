#pragma once

#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/guard/guard_process.h"
#include "x11/keyboard/retry_pauses.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace quorlo {

// Sees to it that a guard runs while keyboards are grabbed: one that ends is replaced. On the loop's thread.
class GuardKeeper {
 public:
  // `guarded` is a window of the client that has the grabs. `guardChanged` is called with the window of the
  // guard that sees keys from now on, or XCB_WINDOW_NONE.
  GuardKeeper(XConnection& connection, XEventLoop& loop, std::filesystem::path program, xcb_window_t guarded,
              xcb_atom_t messageType, std::function<void(xcb_window_t)> guardChanged);

  // Waits until the guard sees keys, but not for long.
  void begin();
  void end();

 private:
  void start();
  void read();
  void replace();

  XConnection& connection_;
  XEventLoop& loop_;
  std::filesystem::path program_;
  xcb_window_t guarded_;
  xcb_atom_t messageType_;
  std::function<void(xcb_window_t)> guardChanged_;
  std::unique_ptr<GuardProcess> guard_;
  std::optional<XEventLoop::TimerId> nextStart_;
  bool isReplacement_ = false;
  RetryPauses pauses_;
};

}  // namespace quorlo
