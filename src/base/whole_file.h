#pragma once

#include "base/result.h"

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace quorlo {

// Gives a file a content that is at hand as a whole, in the way and with the errors of a FileDraft.
Status writeWholeFile(const std::filesystem::path& path, std::string_view content, mode_t mode);

}  // namespace quorlo
