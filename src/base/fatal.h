#pragma once

#include <string_view>

namespace quorlo {

// For what makes going on meaningless, such as an installation without its own files: logs the line and
// aborts the process.
[[noreturn]] void fatal(std::string_view line);

}  // namespace quorlo
