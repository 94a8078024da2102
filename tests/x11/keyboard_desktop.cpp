#include "x11/keyboard_desktop.h"

#include "text/utf.h"
#include "x11/connection/xcb_xkb.h"

#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <stdexcept>

namespace quorlo {

KeyWindow::KeyWindow(const VirtualDesktop& desktop)
    : connection_(std::move(XConnection::open(desktop.display())).value()) {
  xkb_x11_setup_xkb_extension(connection_->get(), 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr,
                              nullptr, nullptr, nullptr);
  window_ = xcb_generate_id(connection_->get());
  const std::array<std::uint32_t, 2> values{
      1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_EXPOSURE};
  xcb_create_window(connection_->get(), XCB_COPY_FROM_PARENT, window_, connection_->root(), 0, 0, 200, 100, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
  xcb_map_window(connection_->get(), window_);
  connection_->sync();
  takeFocus();
}

KeyWindow::~KeyWindow() = default;

void KeyWindow::takeFocus() {
  xcb_set_input_focus(connection_->get(), XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
  connection_->sync();
}

void KeyWindow::clear() {
  read();
  typed_.clear();
  log_.clear();
  reader_.reset();
}

const std::string& KeyWindow::typed() {
  read();
  return typed_;
}

const std::string& KeyWindow::log() {
  read();
  return log_;
}

void KeyWindow::read() {
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
    const auto type = event->response_type & 0x7F;
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) continue;
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(*event);
    if (!reader_) {
      auto map = KeyMap::ofServer(connection_->get(), 3);
      if (!map) continue;
      reader_ = std::make_unique<KeyReader>(std::move(*map), "en_US.UTF-8");
    }
    reader_->setLocks({.lockedModifiers = key.state & 0xFFU, .lockedGroup = (key.state >> 13U) & 3U});
    std::string text;
    const auto characters = type == XCB_KEY_PRESS && !reader_->map().isModifierKey(key.detail)
                                ? reader_->readPress(key.detail).event.characters
                                : reader_->readRepeat(key.detail).characters;
    if (!characters.empty() && characters[0] > 0x20 && characters[0] < 0xE000 && characters[0] != 0x7F) {
      text = toUtf8(characters);
    } else {
      std::array<char, 64> name{};
      xkb_keysym_get_name(reader_->map().keysym(key.detail, 0), name.data(), name.size());
      text = std::string("<") + name.data() + ">";
    }
    if (type == XCB_KEY_RELEASE) {
      log_ += "^" + text;
    } else {
      log_ += text;
      typed_ += text;
    }
  }
}

std::uint16_t deviceNamed(const VirtualDesktop& desktop, const std::string& name) {
  const auto connection = std::move(XConnection::open(desktop.display())).value();
  connection->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(connection->get(), 2, 2));
  const auto devices =
      connection->reply(xcb_input_xi_query_device_reply, xcb_input_xi_query_device(connection->get(), 0));
  for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    const std::string found(xcb_input_xi_device_info_name(it.data),
                            static_cast<std::size_t>(xcb_input_xi_device_info_name_length(it.data)));
    if (found == name) return it.data->deviceid;
  }
  throw std::runtime_error("No device is named " + name);
}

void setKeyboardEnabled(const VirtualDesktop& desktop, const std::string& name, bool enabled) {
  const auto connection = std::move(XConnection::open(desktop.display())).value();
  const std::array<std::uint8_t, 4> value{enabled ? std::uint8_t{1}
                                                  : std::uint8_t{0}};  // xcb sends whole words
  xcb_input_xi_change_property(connection->get(), deviceNamed(desktop, name), XCB_PROP_MODE_REPLACE, 8,
                               connection->atom("Device Enabled"), XCB_ATOM_INTEGER, 1, value.data());
  connection->sync();
}

namespace {

// Runs `task` on a connection that may use XKB.
template <class Task>
auto withXkb(const VirtualDesktop& desktop, Task task) {
  const auto connection = std::move(XConnection::open(desktop.display())).value();
  xkb_x11_setup_xkb_extension(connection->get(), 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr,
                              nullptr, nullptr);
  return task(*connection);
}

}  // namespace

void setControls(const VirtualDesktop& desktop, std::uint32_t controls, bool areOn) {
  withXkb(desktop, [&](const XConnection& connection) {
    const std::array<std::uint8_t, 32> repeats{};
    xcb_xkb_set_controls(connection.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, controls,
                         areOn ? controls : 0, XCB_XKB_CONTROL_CONTROLS_ENABLED, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                         0, 0, 0, 0, repeats.data());
    connection.sync();
  });
}

std::uint32_t controls(const VirtualDesktop& desktop, std::uint16_t device) {
  return withXkb(desktop, [&](const XConnection& connection) {
    const auto reply =
        connection.reply(xcb_xkb_get_controls_reply, xcb_xkb_get_controls(connection.get(), device));
    return reply ? reply->enabledControls : 0;
  });
}

KeyboardDesktop::KeyboardDesktop(VirtualDesktop& desktop) {
  KeyboardOptions options{desktop.display(), QUORLO_KEYBOARD_GUARD, [this] { ++connectionsLost; }};
  auto started = KeyboardService::start(std::move(options), queue);
  if (started) service = std::move(started).value();
}

KeyboardDesktop::~KeyboardDesktop() {
  port_.reset();
  service.reset();
}

bool KeyboardDesktop::startTap() {
  port_ = service->createTap(
      [](TapEventType type, const KeyDownEvent* event, void* userInfo) {
        auto& self = *static_cast<KeyboardDesktop*>(userInfo);
        if (type == TapEventType::kCGEventTapDisabledByTimeout) {
          ++self.timeouts;
          return TapVerdict::pass;
        }
        if (type == TapEventType::keysPassedUnseen) {
          ++self.unseen;
          return TapVerdict::pass;
        }
        self.seen.push_back(*event);
        if (event->origin == KeyDownEvent::Origin::keyboard) self.seenText += toUtf8(event->characters);
        return self.judge ? self.judge(*event) : TapVerdict::pass;
      },
      this);
  return port_ != nullptr;
}

bool KeyboardDesktop::pumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (std::chrono::steady_clock::now() < deadline) {
    queue.pump();
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  }
  return condition();
}

}  // namespace quorlo
