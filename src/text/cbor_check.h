#pragma once

#include "base/result.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace quorlo {

// Whether the bytes are one CBOR item (RFC 8949) of definite lengths, without tags, nested no deeper
// than `maxDepth` containers, complete and with nothing behind it. The library's reader recurses with
// the nesting of its input; what passes here cannot exhaust the stack or claim more than is there.
Status checkCbor(std::span<const std::uint8_t> bytes, std::size_t maxDepth);

}  // namespace quorlo
