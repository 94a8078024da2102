#pragma once

#include "base/life_token.h"
#include "platform/main_queue.h"
#include "platform/target_focus.h"
#include "x11/connection/x_connection.h"

namespace quorlo {

class X11Workspace;

// Asks the window manager for the focus as a pager does (freedesktop.org, "Extended Window Manager Hints",
// _NET_ACTIVE_WINDOW, source indication 2): the user's wish, not to be refused to prevent focus stealing.
// Sets the input focus itself where no window manager answers.
class X11TargetFocus : public TargetFocus {
 public:
  // The references must outlive the object.
  X11TargetFocus(XConnection& x, X11Workspace& workspace, MainQueue& queue)
      : x_(x), workspace_(workspace), queue_(queue) {}

  void remember() override;
  void take(std::uintptr_t window) override;
  void giveBack(Completion completion) override;
  void giveToTarget(Completion completion) override;

 private:
  struct Attempt {
    xcb_window_t window;
    MainQueue::Instant begin;
    Completion completion;
    bool managerWasAsked = false;
    bool focusWasSet = false;
  };

  void give(xcb_window_t window, Completion completion);
  void pursue(Attempt attempt);
  bool isActive(xcb_window_t window) const;
  void askWindowManager(xcb_window_t window) const;
  void setFocus(xcb_window_t window) const;

  XConnection& x_;
  X11Workspace& workspace_;
  MainQueue& queue_;
  xcb_window_t previous_ = XCB_WINDOW_NONE;
  xcb_window_t target_ = XCB_WINDOW_NONE;
  LifeToken life_;
};

}  // namespace quorlo
