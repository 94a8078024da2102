#include "x11/desktop/x11_mouse_monitor.h"

#include <xcb/xinput.h>

#include <utility>

namespace quorlo {

namespace {

constexpr std::uint32_t kLeftButton = 1;

// Of the core protocol: up, down, left and right.
bool isWheel(std::uint32_t button) {
  return button >= 4 && button <= 7;
}

}  // namespace

Result<std::unique_ptr<X11MouseMonitor>> X11MouseMonitor::connect(Options options, MainQueue& queue) {
  auto x = XConnection::open(options.display);
  if (!x) return x.error();
  return std::unique_ptr<X11MouseMonitor>(
      new X11MouseMonitor(std::move(x).value(), std::move(options), queue));
}

X11MouseMonitor::X11MouseMonitor(std::unique_ptr<XConnection> x, Options options, MainQueue& queue)
    : x_(std::move(x)), queue_(queue), loop_(*x_, "mouse") {
  if (const auto* input = x_->extension(xcb_input_id)) {
    // A client that does not say that it knows version 2.1 gets no raw events while there is a grab.
    const auto version =
        x_->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(x_->get(), 2, 2));
    if (version && version->major_version >= 2) inputOpcode_ = input->major_opcode;
  }
  loop_.start([this](const xcb_generic_event_t& event) { handleEvent(event); },
              [lost = std::move(options.connectionLost)] {
                if (lost) lost();
              });
}

X11MouseMonitor::~X11MouseMonitor() {
  loop_.stop();
}

Subscription X11MouseMonitor::observeMouseDown(std::function<void(MouseButton)> handler) {
  if (handlers_->count++ == 0) watch(true);
  auto inner = std::make_shared<Subscription>(handlers_->list.add(std::move(handler)));
  return Subscription([this, inner, alive = std::weak_ptr<Handlers>(handlers_)] {
    inner->reset();
    if (const auto handlers = alive.lock(); handlers && --handlers->count == 0) watch(false);
  });
}

void X11MouseMonitor::watch(bool on) {
  if (inputOpcode_ == 0) return;
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
              on ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS} : 0};
  xcb_input_xi_select_events(x_->get(), x_->root(), 1, &selection.head);
  x_->sync();
}

void X11MouseMonitor::handleEvent(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7F) != XCB_GE_GENERIC) return;
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (generic.extension != inputOpcode_ || generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS) return;
  const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  if (isWheel(press.detail)) return;
  const auto button = press.detail == kLeftButton ? MouseButton::left : MouseButton::other;
  queue_.run([button, alive = std::weak_ptr<Handlers>(handlers_)] {
    if (const auto handlers = alive.lock()) handlers->list.notify(button);
  });
}

}  // namespace quorlo
