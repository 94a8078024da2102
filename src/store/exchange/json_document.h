#pragma once

#include "base/result.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace quorlo {

// Documents that users hand to the program: of any size, any content, from anywhere. The errors are whole
// sentences for the user.

inline constexpr std::size_t kLargestDocument = std::size_t{256} << 20;  // bytes

// At most kLargestDocument.
Result<std::string> readDocumentFile(const std::filesystem::path& file);

// JSON by RFC 8259 with an optional byte order mark. An error names line and column (characters, from 1).
// Refused too: more than 32 levels, more than 10 million values.
Result<nlohmann::json> parseJson(std::string_view text);

}  // namespace quorlo
