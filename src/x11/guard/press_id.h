#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace quorlo {

// Names a key press to the guard and to Quorlo, who each hear of it from the server.
struct PressId {
  std::uint32_t time = 0;  // in milliseconds of the server
  std::uint16_t device = 0;
  std::uint16_t number = 0;  // of the presses that the device reported in this millisecond

  bool operator==(const PressId&) const = default;
};

// Numbers presses in the order in which they happen.
class PressNumbering {
 public:
  PressId next(std::uint16_t device, std::uint32_t time) {
    const bool isSameMoment = last_.device == device && last_.time == time;
    last_ = {time, device, static_cast<std::uint16_t>(isSameMoment ? last_.number + 1 : 0)};
    return last_;
  }

 private:
  PressId last_;
};

// What Quorlo tells the guard of a press, by a client message. The server passes it on behind the keys that
// were pressed before it was sent.
enum class PressReport : std::uint32_t {
  taken,    // Quorlo has it, and may deliver it later
  settled,  // it was delivered or swallowed, and so was every press before it
};

inline xcb_client_message_event_t pressMessage(xcb_window_t window, xcb_atom_t type, PressReport report,
                                               PressId press) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = type;
  message.data.data32[0] = static_cast<std::uint32_t>(report);
  message.data.data32[1] = press.time;
  message.data.data32[2] = press.device;
  message.data.data32[3] = press.number;
  return message;
}

inline PressReport reportOf(const xcb_client_message_event_t& message) {
  return static_cast<PressReport>(message.data.data32[0]);
}

inline PressId pressOf(const xcb_client_message_event_t& message) {
  return {message.data.data32[1], static_cast<std::uint16_t>(message.data.data32[2]),
          static_cast<std::uint16_t>(message.data.data32[3])};
}

}  // namespace quorlo
