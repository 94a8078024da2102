#pragma once

#include "platform/front_window.h"
#include "x11/connection/x_connection.h"

namespace quorlo {

class X11Workspace;

// The window manager tells which window is active; whether it still is decides the input focus, which moves
// before the window manager knows.
class X11FrontWindow : public FrontWindow {
 public:
  // The references must outlive the object.
  X11FrontWindow(XConnection& x, const X11Workspace& workspace) : x_(x), workspace_(workspace) {}

  Id current() const override;
  bool isStill(Id window) const override;

 private:
  XConnection& x_;
  const X11Workspace& workspace_;
};

}  // namespace quorlo
