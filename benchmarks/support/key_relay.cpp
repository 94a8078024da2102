#include "support/key_relay.h"

#include <fmt/format.h>
#include <unistd.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <sys/socket.h>
#include <cstdlib>
#include <fstream>
#include <future>
#include <stdexcept>
#include <string_view>

namespace quorlo {
namespace {

template <class T>
std::unique_ptr<T, decltype(&std::free)> owned(T* reply) {
  return {reply, &std::free};
}

bool isPhysical(const xcb_input_xi_device_info_t& device) {
  const std::string_view name(xcb_input_xi_device_info_name(&device),
                              static_cast<std::size_t>(xcb_input_xi_device_info_name_length(&device)));
  return device.type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && name.find("XTEST") == std::string_view::npos;
}

}  // namespace

KeyRelay::KeyRelay(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr), xcb_disconnect) {
  auto* const x = connection_.get();
  if (xcb_connection_has_error(x) != 0) throw std::runtime_error("no display " + display);
  inputOpcode_ = xcb_get_extension_data(x, &xcb_input_id)->major_opcode;
  owned(xcb_input_xi_query_version_reply(x, xcb_input_xi_query_version(x, 2, 2), nullptr));
  if (grabKeyboards() == 0) throw std::runtime_error("no keyboard can be grabbed");
  std::promise<pid_t> begun;
  thread_ = std::thread([this, &begun] {
    begun.set_value(gettid());
    run();
  });
  threadId_ = begun.get_future().get();
}

KeyRelay::~KeyRelay() {
  shutdown(xcb_get_file_descriptor(connection_.get()), SHUT_RDWR);  // ends the waiting
  thread_.join();
}

double KeyRelay::processorTime() const {
  double nanoseconds = 0;
  std::ifstream(fmt::format("/proc/self/task/{}/schedstat", threadId_)) >> nanoseconds;
  return nanoseconds / 1000;
}

int KeyRelay::grabKeyboards() {
  auto* const x = connection_.get();
  const auto root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
  const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
  const auto devices = owned(xcb_input_xi_query_device_reply(x, xcb_input_xi_query_device(x, 0), nullptr));
  int grabbed = 0;
  for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    if (!isPhysical(*it.data)) continue;
    const auto answer = owned(xcb_input_xi_grab_device_reply(
        x,
        xcb_input_xi_grab_device(x, root, XCB_CURRENT_TIME, XCB_NONE, it.data->deviceid, XCB_GRAB_MODE_ASYNC,
                                 XCB_GRAB_MODE_ASYNC, 0, 1, &mask),
        nullptr));
    if (answer && answer->status == XCB_GRAB_STATUS_SUCCESS) ++grabbed;
  }
  return grabbed;
}

void KeyRelay::run() {
  auto* const x = connection_.get();
  while (const auto event = owned(xcb_wait_for_event(x))) {
    const auto& key = reinterpret_cast<const xcb_input_key_press_event_t&>(*event);
    if ((key.response_type & 0x7F) != XCB_GE_GENERIC || key.extension != inputOpcode_) continue;
    if ((key.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0) continue;
    const auto type = key.event_type == XCB_INPUT_KEY_PRESS ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
    xcb_test_fake_input(x, static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(key.detail),
                        XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(x);
  }
}

}  // namespace quorlo
