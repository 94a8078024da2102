#include "chaos/chaos_target.h"

#include "virtual_desktop/virtual_desktop.h"
#include "virtual_desktop/xcb_reply.h"

#include <poll.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

#define explicit explicit_  // a member's name there
#include <xcb/xkb.h>
#undef explicit

namespace quorlo {

ChaosTarget::ChaosTarget(VirtualDesktop& desktop)
    : connection_(xcb_connect(desktop.display().c_str(), nullptr), xcb_disconnect),
      context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref) {
  if (xcb_connection_has_error(connection_.get()) != 0) throw std::runtime_error("The target has no display");
  xkb_x11_setup_xkb_extension(connection_.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                              XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr);
  const auto* const extension = xcb_get_extension_data(connection_.get(), &xcb_xkb_id);
  if (extension == nullptr) throw std::runtime_error("The X server has no XKB");
  mapEvent_ = extension->first_event;
  constexpr auto kMapEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  constexpr auto kAllParts = static_cast<std::uint16_t>(0xFF);
  xcb_xkb_select_events(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, kMapEvents, 0, kMapEvents, kAllParts,
                        kAllParts, nullptr);
  readMap();
  createWindow();
  thread_ = std::thread([this] { serve(); });
  desktop.windows().activate(window_);
}

ChaosTarget::~ChaosTarget() {
  ends_ = true;
  thread_.join();
}

void ChaosTarget::createWindow() {
  auto* const x = connection_.get();
  const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
  window_ = xcb_generate_id(x);
  const std::uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_KEY_PRESS};
  xcb_create_window(x, XCB_COPY_FROM_PARENT, window_, screen->root, 50, 50, 600, 400, 0,
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
  xcb_map_window(x, window_);
  xcb_flush(x);
}

xcb_atom_t ChaosTarget::atom(const char* name) const {
  const auto cookie =
      xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_.get(), cookie, nullptr));
  if (!reply) throw std::runtime_error("The X server is gone");
  return reply->atom;
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
  while (!ends_ && xcb_connection_has_error(connection_.get()) == 0) {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) handle(*event);
    xcb_flush(connection_.get());
    pollfd descriptor{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
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
    if (symbol == XKB_KEY_v)
      xcb_convert_selection(connection_.get(), window_, clipboard_, utf8_, utf8_, event.time);
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
  const auto cookie =
      xcb_get_property(connection_.get(), 1, window_, utf8_, XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 16);
  const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_.get(), cookie, nullptr));
  if (!reply || reply->type != utf8_) return append("<a paste of another type>");
  append({static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))});
}

void ChaosTarget::append(const std::string& text) {
  const std::lock_guard lock(mutex_);
  text_ += text;
  arrivals_.push_back(Clock::now());
}

void ChaosTarget::readMap() {
  const int device = xkb_x11_get_core_keyboard_device_id(connection_.get());
  const std::shared_ptr<xkb_keymap> map(
      xkb_x11_keymap_new_from_device(context_.get(), connection_.get(), device, XKB_KEYMAP_COMPILE_NO_FLAGS),
      xkb_keymap_unref);
  if (map) state_ = {xkb_state_new(map.get()), xkb_state_unref};
  if (!state_) throw std::runtime_error("The X server gives no keyboard map");
}

}  // namespace quorlo
