#include "virtual_desktop/window_list.h"

#include "virtual_desktop/wait.h"
#include "virtual_desktop/xcb_reply.h"

#include <xcb/res.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace quorlo {

namespace {

constexpr std::chrono::milliseconds kSettled(40);

}  // namespace

WindowList::WindowList(xcb_connection_t* connection)
    : connection_(connection), root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {
  auto* cookies = xcb_ewmh_init_atoms(connection, &ewmh_);
  if (!xcb_ewmh_init_atoms_replies(&ewmh_, cookies, nullptr))
    throw std::runtime_error("The X server gives no atoms");
}

WindowList::~WindowList() {
  xcb_ewmh_connection_wipe(&ewmh_);
}

bool WindowList::managerRuns() {
  xcb_window_t window = 0;
  return xcb_ewmh_get_supporting_wm_check_reply(&ewmh_, xcb_ewmh_get_supporting_wm_check(&ewmh_, root_),
                                                &window, nullptr) == 1;
}

std::vector<xcb_window_t> WindowList::all() {
  xcb_ewmh_get_windows_reply_t reply;
  if (!xcb_ewmh_get_client_list_reply(&ewmh_, xcb_ewmh_get_client_list(&ewmh_, 0), &reply, nullptr))
    return {};
  std::vector<xcb_window_t> windows(reply.windows, reply.windows + reply.windows_len);
  xcb_ewmh_get_windows_reply_wipe(&reply);
  return windows;
}

xcb_window_t WindowList::active() {
  xcb_window_t window = 0;
  xcb_ewmh_get_active_window_reply(&ewmh_, xcb_ewmh_get_active_window(&ewmh_, 0), &window, nullptr);
  return window;
}

std::string WindowList::classOf(xcb_window_t window) {
  const auto cookie = xcb_get_property(connection_, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256);
  const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie, nullptr));
  if (!reply) return {};
  std::string value(static_cast<const char*>(xcb_get_property_value(reply.get())),
                    static_cast<size_t>(xcb_get_property_value_length(reply.get())));
  while (!value.empty() && value.back() == '\0') value.pop_back();
  const auto separator = value.find('\0');
  return separator == std::string::npos ? value : value.substr(separator + 1);
}

std::string WindowList::titleOf(xcb_window_t window) {
  xcb_ewmh_get_utf8_strings_reply_t reply;
  if (!xcb_ewmh_get_wm_name_reply(&ewmh_, xcb_ewmh_get_wm_name(&ewmh_, window), &reply, nullptr)) return {};
  std::string title(reply.strings, reply.strings_len);
  xcb_ewmh_get_utf8_strings_reply_wipe(&reply);
  return title;
}

pid_t WindowList::processOf(xcb_window_t window) {
  const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const Reply<xcb_res_query_client_ids_reply_t> reply(
      xcb_res_query_client_ids_reply(connection_, xcb_res_query_client_ids(connection_, 1, &spec), nullptr));
  if (!reply) return 0;
  for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0;
       xcb_res_client_id_value_next(&it)) {
    if (it.data->spec.mask == XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID && it.data->length >= 4) {
      return static_cast<pid_t>(*xcb_res_client_id_value_value(it.data));
    }
  }
  return 0;
}

WindowList::Rectangle WindowList::placeOf(xcb_window_t window) {
  const auto geometryCookie = xcb_get_geometry(connection_, window);
  const auto originCookie = xcb_translate_coordinates(connection_, window, root_, 0, 0);
  const Reply<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(connection_, geometryCookie, nullptr));
  const Reply<xcb_translate_coordinates_reply_t> origin(
      xcb_translate_coordinates_reply(connection_, originCookie, nullptr));
  if (!geometry || !origin) throw std::runtime_error("The window is gone");
  return {origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

xcb_window_t WindowList::waitForWindowOf(pid_t process) {
  xcb_window_t found = 0;
  waitUntil([&] {
    for (const auto window : all()) {
      if (processOf(window) == process) found = window;
    }
    return found != 0;
  });
  if (found == 0) throw std::runtime_error("Process " + std::to_string(process) + " opened no window");
  return found;
}

bool WindowList::isInFront(xcb_window_t window) {
  const Reply<xcb_get_input_focus_reply_t> focus(
      xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  return active() == window && focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT &&
         processOf(focus->focus) == processOf(window);
}

void WindowList::activate(xcb_window_t window) {
  using Clock = std::chrono::steady_clock;
  auto askAgain = Clock::now();
  std::optional<Clock::time_point> inFrontSince;
  const bool done = waitUntil([&] {
    if (isInFront(window)) {
      // For a moment nobody may be in front again, while the window manager sorts out what a busy program
      // that is still starting has asked for.
      if (!inFrontSince) inFrontSince = Clock::now();
      return Clock::now() - *inFrontSince >= kSettled;
    }
    inFrontSince.reset();
    // A program that is still starting may put itself in front after having been asked to stand back.
    if (Clock::now() >= askAgain) {
      askAgain = Clock::now() + std::chrono::milliseconds(300);
      // "2": asked for by the user, so that no focus-stealing rule applies.
      xcb_ewmh_request_change_active_window(&ewmh_, 0, window, XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER,
                                            XCB_CURRENT_TIME, active());
      xcb_flush(connection_);
    }
    return false;
  });
  if (!done) throw std::runtime_error("Window " + titleOf(window) + " did not become active");
}

}  // namespace quorlo
