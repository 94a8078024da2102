#pragma once

#include "base/result.h"

#include <cstddef>
#include <filesystem>
#include <optional>

namespace quorlo {

// How many live snippets the library of the folder holds; absent while there is no library. Reads the whole
// file and changes nothing; an error says what is wrong and what to do.
Result<std::optional<std::size_t>> checkLibrary(const std::filesystem::path& directory);

}  // namespace quorlo
