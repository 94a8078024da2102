#include "chaos/sticky_keys.h"

#include "virtual_desktop/xcb_reply.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <array>
#include <cstdint>
#include <memory>

// A C header with a member that is a keyword of C++.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit

namespace quorlo {

void setStickyKeys(const std::string& display, bool on) {
  const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> x(xcb_connect(display.c_str(), nullptr),
                                                                       xcb_disconnect);
  xkb_x11_setup_xkb_extension(x.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                              XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr);
  const std::array<std::uint8_t, 32> repeats{};
  const std::uint32_t sticky = XCB_XKB_BOOL_CTRL_STICKY_KEYS;
  xcb_xkb_set_controls(x.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, sticky,
                       on ? sticky : 0, XCB_XKB_CONTROL_CONTROLS_ENABLED, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                       0, 0, repeats.data());
  const Reply<xcb_get_input_focus_reply_t> done(
      xcb_get_input_focus_reply(x.get(), xcb_get_input_focus(x.get()), nullptr));
}

}  // namespace quorlo
