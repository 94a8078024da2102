#pragma once

#include "x11/connection/x_connection.h"

#include <sys/uio.h>
#include <xcb/xcbext.h>

#include <array>
#include <cstdint>
#include <vector>

namespace quorlo {

// Requests for which xcb's own functions are missing or wrong: the fixed part, and the lists after it, padded
// to whole words.

enum class RawReply { none, awaited };

// The result is for the cookie of the request's kind.
template <class Request>
unsigned sendRaw(const XConnection& connection, xcb_extension_t& extension, std::uint8_t opcode,
                 Request request, std::vector<std::uint8_t> lists, RawReply reply = RawReply::none) {
  std::array<iovec, 4> parts{};  // xcb keeps the first two for itself
  parts[2] = {&request, sizeof request};
  parts[3] = {lists.data(), lists.size()};
  const bool isVoid = reply == RawReply::none;
  const xcb_protocol_request_t description{2, &extension, opcode, static_cast<std::uint8_t>(isVoid)};
  return xcb_send_request(connection.get(), isVoid ? 0 : XCB_REQUEST_CHECKED, &parts[2], &description);
}

}  // namespace quorlo
