#pragma once

#include "base/result.h"

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace quorlo {

// Gives the file this content, whole or not at all, also after a power cut: others see the former content or
// the new one. Where the path is a link, the file that it leads to is replaced. `mode` is that of a newly
// made file, narrowed by the process's umask. Errors name the file and give the system's reason. Any thread.
Status writeWholeFile(const std::filesystem::path& path, std::string_view content, mode_t mode);

}  // namespace quorlo
