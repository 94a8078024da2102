#pragma once

#include "base/result.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace quorlo {

// Whether the bytes begin with one complete CBOR item (RFC 8949) of definite lengths, without tags and
// nested no deeper than `maxDepth` containers. The library's reader recurses with the nesting of its
// input and throws on impossible lengths; what passes here cannot bring it to either.
Status checkCbor(std::span<const std::uint8_t> bytes, std::size_t maxDepth);

}  // namespace quorlo
