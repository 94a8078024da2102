#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace quorlo {

// The connection to a device of the X server's "inputtest" driver (protocol:
// xorg/xf86-input-inputtest-protocol.h). One connection per device and server life: the driver never answers
// a second one. Its synchronisation message is not used: the reply fails to come when nothing was queued.
class InputDevice {
 public:
  // Throws std::runtime_error when the server does not answer.
  explicit InputDevice(const std::filesystem::path& socket);
  ~InputDevice();
  InputDevice(const InputDevice&) = delete;
  InputDevice& operator=(const InputDevice&) = delete;

  void key(uint8_t keycode, bool press);
  void button(int number, bool press);
  // To a part of the screen: 0 is its left (top) edge, 1 its right (bottom) one.
  void moveTo(double x, double y);

 private:
  void send(const void* event, size_t size);

  int fd_;
};

}  // namespace quorlo
