#pragma once

#include "base/result.h"
#include "text/attributed_string.h"

#include <cstdint>
#include <span>
#include <vector>

namespace quorlo {

// The stored form of attributed text: CBOR (RFC 8949) of {"version": 1, "text": value}, where the value
// has the form described in rich_text_json.h with binary strings in place of base64. Definite lengths
// only, no tags. A new attribute raises the version.
std::vector<std::uint8_t> archive(const AttributedString& text);

// Bytes from anywhere: damaged or hostile ones yield an error and cost no more than their length. An
// archive of a newer version is refused with words that say so.
Result<AttributedString> unarchive(std::span<const std::uint8_t> bytes);

}  // namespace quorlo
