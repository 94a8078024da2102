#include "x11/desktop/x11_front_window.h"

#include "x11/connection/window_tree.h"
#include "x11/desktop/x11_workspace.h"

namespace quorlo {

FrontWindow::Id X11FrontWindow::current() const {
  return workspace_.activeWindow().window;
}

bool X11FrontWindow::isStill(Id id) const {
  const auto window = static_cast<xcb_window_t>(id);
  if (window == XCB_WINDOW_NONE) return true;
  const auto active = workspace_.activeWindow().window;
  if (workspace_.keyboardIsTaken()) return false;
  const auto reply = x_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x_.get()));
  if (!reply) return false;
  const auto focus = reply->focus;
  const bool isSomewhere =
      focus != XCB_INPUT_FOCUS_NONE && focus != XCB_INPUT_FOCUS_POINTER_ROOT && focus != x_.root();
  if (isSomewhere) return isInside(x_, focus, window);
  if (active != XCB_WINDOW_NONE && active != window) return false;
  const auto attributes =
      x_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_.get(), window));
  return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

}  // namespace quorlo
