#include "virtual_desktop/pasting_window.h"

#include "virtual_desktop/xcb_reply.h"

#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace quorlo {

PastingWindow::PastingWindow(const std::string& display, std::uint16_t width, std::uint16_t height)
    : connection_(xcb_connect(display.c_str(), nullptr), xcb_disconnect) {
  auto* const x = connection_.get();
  if (xcb_connection_has_error(x) != 0) throw std::runtime_error("no display " + display);
  const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
  window_ = xcb_generate_id(x);
  const std::uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_KEY_PRESS};
  xcb_create_window(x, XCB_COPY_FROM_PARENT, window_, screen->root, 50, 50, width, height, 0,
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

xcb_atom_t PastingWindow::atom(const char* name) const {
  const auto cookie = xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection(), cookie, nullptr));
  if (!reply) throw std::runtime_error("the X server is gone");
  return reply->atom;
}

void PastingWindow::readClipboard(xcb_timestamp_t time) const {
  xcb_convert_selection(connection(), window_, clipboard_, utf8_, utf8_, time);
  xcb_flush(connection());
}

std::optional<std::string> PastingWindow::takeText(const xcb_selection_notify_event_t& answer) const {
  if (answer.property == XCB_ATOM_NONE) return std::nullopt;
  const auto cookie =
      xcb_get_property(connection(), 1, window_, utf8_, XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 16);
  const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), cookie, nullptr));
  if (!reply || reply->type != utf8_) return std::nullopt;
  return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                     static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}

}  // namespace quorlo
