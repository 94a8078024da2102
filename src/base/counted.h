#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorlo {

// "1 snippet", "0 snippets": for the texts of terminals and logs, which are English.
inline std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return std::to_string(count).append(" ").append(count == 1 ? one : many);
}

}  // namespace quorlo
