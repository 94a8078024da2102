#include "x11/desktop/x11_target_focus.h"

#include "x11/connection/window_tree.h"
#include "x11/desktop/x11_workspace.h"

#include <chrono>
#include <utility>

namespace quorlo {
namespace {

constexpr std::chrono::seconds kPatience{1};
// So long a window manager may take, and a window of ours to get on the screen.
constexpr std::chrono::milliseconds kWindowManagerPatience{200};
constexpr Seconds kLookAgain{0.004};

}  // namespace

void X11TargetFocus::remember() {
  const auto active = workspace_.activeWindow();
  previous_ = active.window;
  target_ = active.isOwn ? workspace_.lastForeignWindow() : active.window;
}

void X11TargetFocus::take(std::uintptr_t window) {
  pursue({static_cast<xcb_window_t>(window), queue_.now(), [](bool) {}});
}

void X11TargetFocus::giveBack(Completion completion) {
  give(previous_, std::move(completion));
}

void X11TargetFocus::giveToTarget(Completion completion) {
  give(target_, std::move(completion));
}

void X11TargetFocus::give(xcb_window_t window, Completion completion) {
  auto begin = [this, attempt = Attempt{window, queue_.now(), std::move(completion)}]() mutable {
    pursue(std::move(attempt));
  };
  queue_.run(life_.guard(std::move(begin)));
}

void X11TargetFocus::pursue(Attempt attempt) {
  if (isActive(attempt.window)) return attempt.completion(true);
  const auto time = queue_.now() - attempt.begin;
  const auto attributes =
      x_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_.get(), attempt.window));
  if (!attributes || time > kPatience) return attempt.completion(false);
  const bool isShown = attributes->map_state == XCB_MAP_STATE_VIEWABLE;  // one of ours may not be yet
  if (!std::exchange(attempt.managerWasAsked, true)) askWindowManager(attempt.window);
  if (isShown && time > kWindowManagerPatience && !std::exchange(attempt.focusWasSet, true)) {
    askWindowManager(attempt.window);
    setFocus(attempt.window);
  }
  queue_.runAfter(kLookAgain, life_.guard([this, attempt = std::move(attempt)]() mutable {
    pursue(std::move(attempt));
  }));
}

// The window manager may tell of the active window before the focus is there, and keys follow the focus.
bool X11TargetFocus::isActive(xcb_window_t window) const {
  if (window == XCB_WINDOW_NONE || workspace_.activeWindow().window != window) return false;
  const auto focus = x_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x_.get()));
  if (!focus) return false;
  if (focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT) return true;
  return isInside(x_, focus->focus, window);
}

void X11TargetFocus::askWindowManager(xcb_window_t window) const {
  constexpr std::uint32_t kPager = 2;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = x_.atom("_NET_ACTIVE_WINDOW");
  message.data.data32[0] = kPager;
  message.data.data32[1] = XCB_CURRENT_TIME;
  xcb_send_event(x_.get(), 0, x_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  x_.flush();
}

void X11TargetFocus::setFocus(xcb_window_t window) const {
  const auto request =
      xcb_set_input_focus_checked(x_.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
  const XReply<xcb_generic_error_t> refused(xcb_request_check(x_.get(), request));
}

}  // namespace quorlo
