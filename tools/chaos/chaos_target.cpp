#include "chaos/chaos_target.h"

#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/xcb_reply.h"

#include <poll.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <cstdint>
#include <stdexcept>

#define explicit explicit_  // a member's name there
#include <xcb/xkb.h>
#undef explicit

namespace quorlo {

ChaosTarget::ChaosTarget(VirtualDesktop& desktop)
    : window_(desktop.display(), 600, 400),
      context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref) {
  auto* const x = window_.connection();
  xkb_x11_setup_xkb_extension(x, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                              XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr);
  const auto* const extension = xcb_get_extension_data(x, &xcb_xkb_id);
  if (extension == nullptr) throw std::runtime_error("The X server has no XKB");
  mapEvent_ = extension->first_event;
  constexpr auto kMapEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  constexpr auto kAllParts = static_cast<std::uint16_t>(0xFF);
  xcb_xkb_select_events(x, XCB_XKB_ID_USE_CORE_KBD, kMapEvents, 0, kMapEvents, kAllParts, kAllParts, nullptr);
  readMap();
  thread_ = std::thread([this] { serve(); });
  desktop.windows().activate(window());
}

ChaosTarget::~ChaosTarget() {
  ends_ = true;
  thread_.join();
}

std::string ChaosTarget::text() const {
  const std::lock_guard lock(mutex_);
  return text_;
}

std::vector<ChaosTarget::Clock::time_point> ChaosTarget::arrivals() const {
  const std::lock_guard lock(mutex_);
  return arrivals_;
}

void ChaosTarget::clear() {
  const std::lock_guard lock(mutex_);
  text_.clear();
  arrivals_.clear();
}

void ChaosTarget::serve() {
  auto* const x = window_.connection();
  while (!ends_ && xcb_connection_has_error(x) == 0) {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(x)}) handle(*event);
    pollfd descriptor{xcb_get_file_descriptor(x), POLLIN, 0};
    poll(&descriptor, 1, 50);
  }
}

void ChaosTarget::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) == mapEvent_) return readMap();
  switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS:
      return keyPressed(reinterpret_cast<const xcb_key_press_event_t&>(event));
    case XCB_SELECTION_NOTIFY:
      return pasted(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
    default:
      return;
  }
}

void ChaosTarget::keyPressed(const xcb_key_press_event_t& event) {
  const auto group = static_cast<xkb_layout_index_t>(event.state >> 13 & 3);
  xkb_state_update_mask(state_.get(), event.state & 0xFFU, 0, 0, 0, 0, group);
  const auto symbol = xkb_state_key_get_one_sym(state_.get(), event.detail);
  if ((event.state & XCB_MOD_MASK_CONTROL) != 0) {
    append({});
    if (symbol == XKB_KEY_v) window_.readClipboard(event.time);
    return;
  }
  if (symbol == XKB_KEY_BackSpace) {
    const std::lock_guard lock(mutex_);
    if (!text_.empty()) text_.pop_back();
    arrivals_.push_back(Clock::now());
    return;
  }
  const auto character = symbol == XKB_KEY_Return ? U'\n' : xkb_keysym_to_utf32(symbol);
  const bool isAscii = character == U'\n' || (character >= U' ' && character <= U'~');
  append(isAscii ? std::string(1, static_cast<char>(character)) : std::string());
}

void ChaosTarget::pasted(const xcb_selection_notify_event_t& event) {
  if (event.property == XCB_ATOM_NONE) return append("<nothing to paste>");
  append(window_.takeText(event).value_or("<a paste of another type>"));
}

void ChaosTarget::append(const std::string& text) {
  const std::lock_guard lock(mutex_);
  text_ += text;
  arrivals_.push_back(Clock::now());
}

void ChaosTarget::readMap() {
  const int device = xkb_x11_get_core_keyboard_device_id(window_.connection());
  const std::shared_ptr<xkb_keymap> map(xkb_x11_keymap_new_from_device(context_.get(), window_.connection(),
                                                                       device, XKB_KEYMAP_COMPILE_NO_FLAGS),
                                        xkb_keymap_unref);
  if (map) state_ = {xkb_state_new(map.get()), xkb_state_unref};
  if (!state_) throw std::runtime_error("The X server gives no keyboard map");
}

}  // namespace quorlo
