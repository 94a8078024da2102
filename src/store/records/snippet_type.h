#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// What a snippet's text is. The raw values are stored and never renumbered; 3 to 7 do not exist.
enum class SnippetType { plainText = 0, formatted = 1, image = 2, code = 8 };
inline constexpr std::array kSnippetTypes{SnippetType::plainText, SnippetType::formatted, SnippetType::image,
                                          SnippetType::code};

std::optional<SnippetType> snippetType(std::int64_t rawValue);
std::u16string displayName(SnippetType type);
std::string_view symbolName(SnippetType type);

// "1 image", "3 images".
std::u16string imageCountLabel(std::size_t count);

}  // namespace quorlo
