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

// By its byte order mark, or by its first character.
bool isUtf16(std::string_view text);

// What checkJson() lets pass, in UTF-8.
Result<nlohmann::json> parseJson(std::string_view text);

}  // namespace quorlo
