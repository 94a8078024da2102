#include "x11/desktop/keyboard_grab_watch.h"

#include "x11/connection/client_identity.h"

#include <algorithm>

namespace quorlo {

namespace {

xcb_grab_keyboard_cookie_t askForGrab(const XConnection& x, xcb_window_t unmapped) {
  return xcb_grab_keyboard(x.get(), 0, unmapped, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
}

// The server looks for another client's grab before it finds that the window is not viewable.
bool saysGrabbed(const XConnection& x, xcb_grab_keyboard_cookie_t request) {
  const auto answer = x.reply(xcb_grab_keyboard_reply, request);
  return answer && answer->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

bool isShownPopup(const XReply<xcb_get_window_attributes_reply_t>& attributes) {
  return attributes && attributes->override_redirect != 0 && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
}

void selectFocusChanges(const XConnection& x, xcb_window_t window) {
  const std::uint32_t mask = XCB_EVENT_MASK_FOCUS_CHANGE;
  xcb_change_window_attributes(x.get(), window, XCB_CW_EVENT_MASK, &mask);
}

}  // namespace

bool keyboardIsGrabbed(const XConnection& x, xcb_window_t unmapped) {
  return saysGrabbed(x, askForGrab(x, unmapped));
}

KeyboardGrabWatch::KeyboardGrabWatch(XConnection& x)
    : x_(x), probe_(x.createMessageWindow(XCB_EVENT_MASK_NO_EVENT)) {}

void KeyboardGrabWatch::begin() {
  const auto tree = x_.reply(xcb_query_tree_reply, xcb_query_tree(x_.get(), x_.root()));
  if (!tree) return;
  const auto* const windows = xcb_query_tree_children(tree.get());
  std::for_each(windows, windows + xcb_query_tree_children_length(tree.get()),
                [&](xcb_window_t window) { selectFocusChanges(x_, window); });
}

void KeyboardGrabWatch::handleEvent(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7FU) {
    case XCB_CREATE_NOTIFY:
      selectFocusChanges(x_, reinterpret_cast<const xcb_create_notify_event_t&>(event).window);
      break;
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
      noteFocusEvent(reinterpret_cast<const xcb_focus_in_event_t&>(event));
      break;
    default:
      break;
  }
}

// A grab is reported like a change of the focus: out of the window with the focus or the one with the grab
// before, into the window with the grab. Windows above these get events of virtual kinds.
void KeyboardGrabWatch::noteFocusEvent(const xcb_focus_in_event_t& event) {
  mustLook_ = true;
  if (event.mode == XCB_NOTIFY_MODE_UNGRAB) grabWindow_.reset();
  if (event.mode != XCB_NOTIFY_MODE_GRAB) return;
  if ((event.response_type & 0x7FU) == XCB_FOCUS_IN) {
    grabWindow_ = event.event;
  } else if (event.detail == XCB_NOTIFY_DETAIL_ANCESTOR || event.detail == XCB_NOTIFY_DETAIL_INFERIOR) {
    grabWindow_ = event.event;  // or one above or below it
  } else {
    grabWindow_.reset();
  }
}

void KeyboardGrabWatch::settle(xcb_window_t activeWindow) {
  if (!mustLook_ && activeWindow == active_) return;
  mustLook_ = false;
  active_ = activeWindow;
  const auto focus = x_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x_.get()));
  if (focus) followFocus(focus->focus);
  if (!keyboardIsGrabbed(x_, probe_)) {
    grabWindow_.reset();
    isTaken_ = false;
  } else {
    isTaken_ = grabWindow_ ? !isPopupOf(active_) : !hasPopup(active_);
  }
}

// Its events first, the question for a grab afterwards: no grab begins in between unseen.
void KeyboardGrabWatch::followFocus(xcb_window_t focus) {
  if (focus == focus_) return;
  focus_ = focus;
  if (focus > XCB_INPUT_FOCUS_POINTER_ROOT && focus != x_.root()) selectFocusChanges(x_, focus);
}

bool KeyboardGrabWatch::isPopupOf(xcb_window_t program) const {
  if (*grabWindow_ == x_.root()) return false;
  const auto popup = outermostOfItsProgram(*grabWindow_);
  const auto attributes =
      x_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_.get(), popup));
  return isShownPopup(attributes) && clientOfWindow(x_, popup).isSameProgramAs(clientOfWindow(x_, program));
}

// A popup may have the grab before the watch knows of its window.
bool KeyboardGrabWatch::hasPopup(xcb_window_t program) const {
  const auto tree = x_.reply(xcb_query_tree_reply, xcb_query_tree(x_.get(), x_.root()));
  if (!tree) return false;
  const auto owner = clientOfWindow(x_, program);
  const auto* const windows = xcb_query_tree_children(tree.get());
  return std::any_of(windows, windows + xcb_query_tree_children_length(tree.get()), [&](xcb_window_t window) {
    return isShownPopup(
               x_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_.get(), window))) &&
           clientOfWindow(x_, window).isSameProgramAs(owner);
  });
}

// Not further: a window manager may make its frames in the way of popups.
xcb_window_t KeyboardGrabWatch::outermostOfItsProgram(xcb_window_t window) const {
  const auto base = [ids = xcb_get_setup(x_.get())->resource_id_mask](xcb_window_t each) {
    return each & ~ids;
  };
  auto outermost = window;
  while (const auto tree = x_.reply(xcb_query_tree_reply, xcb_query_tree(x_.get(), outermost))) {
    if (tree->parent == XCB_WINDOW_NONE || base(tree->parent) != base(window)) break;
    outermost = tree->parent;
  }
  return outermost;
}

}  // namespace quorlo
