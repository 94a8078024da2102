#include "target_window.h"

#include "virtual_desktop/xcb_reply.h"

#include <poll.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace quorlo {

TargetWindow::TargetWindow(const std::string& display, xcb_keycode_t pasteKey)
    : window_(display, 300, 200), pasteKey_(pasteKey), targets_(window_.atom("TARGETS")) {}

void TargetWindow::ownClipboard(std::string text) {
  owned_ = std::move(text);
  xcb_set_selection_owner(window_.connection(), window(), window_.clipboard(), XCB_CURRENT_TIME);
  xcb_flush(window_.connection());
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
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(window_.connection())}) handle(*event);
    if (stopAtPaste && hasPaste_) return true;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0) return false;
    pollfd descriptor{xcb_get_file_descriptor(window_.connection()), POLLIN, 0};
    poll(&descriptor, 1, static_cast<int>(left));
  }
}

void TargetWindow::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS: {
      const auto now = Clock::now();
      longestGap_ = std::max(longestGap_, now - std::exchange(lastPress_, now));
      const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
      if (press.detail != pasteKey_ || (press.state & XCB_MOD_MASK_CONTROL) == 0) return;
      return window_.readClipboard(press.time);
    }
    case XCB_SELECTION_NOTIFY: {
      auto text = window_.takeText(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
      if (!text) return;
      pasted_ = std::move(*text);
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
  auto* const x = window_.connection();
  xcb_selection_notify_event_t reply{};
  reply.response_type = XCB_SELECTION_NOTIFY;
  reply.time = request.time;
  reply.requestor = request.requestor;
  reply.selection = request.selection;
  reply.target = request.target;
  reply.property = request.property;
  if (request.target == targets_) {
    const xcb_atom_t offered[] = {targets_, window_.utf8()};
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, request.requestor, request.property, XCB_ATOM_ATOM, 32, 2,
                        offered);
  } else if (request.target == window_.utf8()) {
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, request.requestor, request.property, window_.utf8(), 8,
                        static_cast<std::uint32_t>(owned_.size()), owned_.data());
  } else {
    reply.property = XCB_ATOM_NONE;
  }
  xcb_send_event(x, 0, request.requestor, 0, reinterpret_cast<const char*>(&reply));
  xcb_flush(x);
}

}  // namespace quorlo
