#include "target_window.h"

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace quorlo {

TargetWindow::TargetWindow(const std::string& display, xcb_keycode_t pasteKey)
    : connection_(xcb_connect(display.c_str(), nullptr), xcb_disconnect), pasteKey_(pasteKey) {
  if (xcb_connection_has_error(connection_.get()) != 0) throw std::runtime_error("no display " + display);
  auto* const x = connection_.get();
  const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
  window_ = xcb_generate_id(x);
  const std::uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_KEY_PRESS};
  xcb_create_window(x, XCB_COPY_FROM_PARENT, window_, screen->root, 50, 50, 300, 200, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK,
                    values);
  const char name[] = "target\0Target";
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, sizeof name,
                      name);
  const auto process = static_cast<std::uint32_t>(getpid());
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1,
                      &process);
  clipboard_ = atom("CLIPBOARD");
  utf8_ = atom("UTF8_STRING");
  targets_ = atom("TARGETS");
  xcb_map_window(x, window_);
  xcb_flush(x);
}

xcb_atom_t TargetWindow::atom(const char* name) const {
  const auto cookie =
      xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  auto* const reply = xcb_intern_atom_reply(connection_.get(), cookie, nullptr);
  if (reply == nullptr) throw std::runtime_error("the X server is gone");
  const auto result = reply->atom;
  std::free(reply);
  return result;
}

void TargetWindow::ownClipboard(std::string text) {
  owned_ = std::move(text);
  xcb_set_selection_owner(connection_.get(), window_, clipboard_, XCB_CURRENT_TIME);
  xcb_flush(connection_.get());
}

TargetWindow::Clock::time_point TargetWindow::waitForPaste() {
  hasPaste_ = false;
  if (!serveUntil(Clock::now() + std::chrono::seconds(2), true)) {
    throw std::runtime_error("nothing was pasted");
  }
  return pastedAt_;
}

void TargetWindow::serve(std::chrono::milliseconds time) {
  serveUntil(Clock::now() + time, false);
}

bool TargetWindow::serveUntil(Clock::time_point end, bool stopAtPaste) {
  while (true) {
    while (auto* const event = xcb_poll_for_event(connection_.get())) {
      handle(*event);
      std::free(event);
    }
    if (stopAtPaste && hasPaste_) return true;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0) return false;
    pollfd descriptor{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
    poll(&descriptor, 1, static_cast<int>(left));
  }
}

void TargetWindow::handle(const xcb_generic_event_t& event) {
  auto* const x = connection_.get();
  switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS: {
      const auto now = Clock::now();
      longestGap_ = std::max(longestGap_, now - std::exchange(lastPress_, now));
      const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
      if (press.detail != pasteKey_ || (press.state & XCB_MOD_MASK_CONTROL) == 0) return;
      xcb_convert_selection(x, window_, clipboard_, utf8_, utf8_, press.time);
      xcb_flush(x);
      return;
    }
    case XCB_SELECTION_NOTIFY: {
      const auto cookie = xcb_get_property(x, 1, window_, utf8_, XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 16);
      auto* const reply = xcb_get_property_reply(x, cookie, nullptr);
      if (reply == nullptr) return;
      pasted_.assign(static_cast<const char*>(xcb_get_property_value(reply)),
                     static_cast<std::size_t>(xcb_get_property_value_length(reply)));
      std::free(reply);
      pastedAt_ = Clock::now();
      hasPaste_ = true;
      return;
    }
    case XCB_SELECTION_REQUEST:
      answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
      return;
    default:
      return;
  }
}

void TargetWindow::answer(const xcb_selection_request_event_t& request) {
  auto* const x = connection_.get();
  xcb_selection_notify_event_t reply{};
  reply.response_type = XCB_SELECTION_NOTIFY;
  reply.time = request.time;
  reply.requestor = request.requestor;
  reply.selection = request.selection;
  reply.target = request.target;
  reply.property = request.property;
  if (request.target == targets_) {
    const xcb_atom_t offered[] = {targets_, utf8_};
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, request.requestor, request.property, XCB_ATOM_ATOM, 32, 2,
                        offered);
  } else if (request.target == utf8_) {
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, request.requestor, request.property, utf8_, 8,
                        static_cast<std::uint32_t>(owned_.size()), owned_.data());
  } else {
    reply.property = XCB_ATOM_NONE;
  }
  xcb_send_event(x, 0, request.requestor, 0, reinterpret_cast<const char*>(&reply));
  xcb_flush(x);
}

}  // namespace quorlo
