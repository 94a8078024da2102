#include "virtual_desktop/input_device.h"

#include "virtual_desktop/wait.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xorg/xf86-input-inputtest-protocol.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace quorlo {

namespace {

template <class Event>
Event blank(xf86ITEventType type) {
  Event event;
  std::memset(&event, 0, sizeof event);
  event.header.length = sizeof event;
  event.header.type = type;
  return event;
}

}  // namespace

InputDevice::InputDevice(const std::filesystem::path& socketPath)
    : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = socketPath;
  if (fd_ < 0 || path.size() >= sizeof address.sun_path)
    throw std::runtime_error("Cannot use the socket " + path);
  path.copy(address.sun_path, path.size());
  const bool connected = waitUntil(
      [&] { return connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0; });
  xf86ITResponseServerVersion version{};
  if (connected) {
    auto hello = blank<xf86ITEventClientVersion>(XF86IT_EVENT_CLIENT_VERSION);
    hello.major = XF86IT_PROTOCOL_VERSION_MAJOR;
    hello.minor = XF86IT_PROTOCOL_VERSION_MINOR;
    send(&hello, sizeof hello);
    pollfd answer{fd_, POLLIN, 0};
    if (poll(&answer, 1, static_cast<int>(kPatience.count())) == 1 &&
        recv(fd_, &version, sizeof version, MSG_WAITALL) == sizeof version) {
      return;
    }
  }
  close(fd_);
  throw std::runtime_error("The virtual device " + path + " does not answer");
}

InputDevice::~InputDevice() {
  close(fd_);
}

void InputDevice::key(uint8_t keycode, bool press) {
  auto event = blank<xf86ITEventKey>(XF86IT_EVENT_KEY);
  event.key_code = keycode;
  event.is_press = press;
  send(&event, sizeof event);
}

void InputDevice::button(int number, bool press) {
  auto event = blank<xf86ITEventButton>(XF86IT_EVENT_BUTTON);
  event.is_absolute = 1;
  event.button = number;
  event.is_press = press;
  send(&event, sizeof event);
}

void InputDevice::moveTo(double x, double y) {
  constexpr double kAxisRange = 0xFFFF;  // the driver's absolute axes, whatever the size of the screen

  auto event = blank<xf86ITEventMotion>(XF86IT_EVENT_MOTION);
  event.is_absolute = 1;
  event.valuators.mask[0] = 0b11;
  event.valuators.valuators[0] = x * kAxisRange;
  event.valuators.valuators[1] = y * kAxisRange;
  send(&event, sizeof event);
}

void InputDevice::send(const void* event, size_t size) {
  const auto* bytes = static_cast<const char*>(event);
  while (size > 0) {
    const auto sent = ::send(fd_, bytes, size, MSG_NOSIGNAL);
    if (sent <= 0) throw std::runtime_error("The X server no longer takes input");
    bytes += sent;
    size -= static_cast<size_t>(sent);
  }
}

}  // namespace quorlo
