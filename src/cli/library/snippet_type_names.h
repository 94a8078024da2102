#pragma once

#include "store/records/snippet_type.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace quorlo {

// The types of snippets by the names that the command line has for them.
inline constexpr std::array<std::pair<std::string_view, SnippetType>, 4> kSnippetTypeNames{
    {{"plain", SnippetType::plainText},
     {"formatted", SnippetType::formatted},
     {"image", SnippetType::image},
     {"code", SnippetType::code}}};

inline std::string_view nameOf(std::int64_t rawType) {
  for (const auto& [name, type] : kSnippetTypeNames) {
    if (static_cast<std::int64_t>(type) == rawType) return name;
  }
  return "unknown";
}

}  // namespace quorlo
