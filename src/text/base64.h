#pragma once

#include "base/result.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// Base64 by RFC 4648, section 4: the standard alphabet, padded, no line breaks.
std::string toBase64(std::span<const std::uint8_t> bytes);

// Fails on anything that toBase64 does not write, non-zero spare bits included.
Result<std::vector<std::uint8_t>> fromBase64(std::string_view text);

}  // namespace quorlo
