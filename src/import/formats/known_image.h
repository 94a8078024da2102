#pragma once

#include "import/import_data.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace quorlo {

// "image/png" and so on, told by the first bytes of the encoded picture; empty for what is no picture known
// here.
std::string_view imageMediaType(std::span<const std::uint8_t> bytes);

// Puts the picture where the snippet's text has a U+FFFC character, or at its end. A snippet that is nothing
// but the picture becomes an image snippet, any other a formatted one.
void placePicture(ImportedSnippet& snippet, const std::vector<std::uint8_t>& bytes,
                  std::string_view mediaType);

}  // namespace quorlo
