#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace quorlo {

// Texts as they may be shown in a terminal, UTF-8 throughout.

enum class LineBreaks { kept, shown };

// Control characters, which a terminal would obey, are shown as pictures of themselves ("␛"), tabs as a
// blank. Line feeds stay where they are kept, and are shown as "⏎" else.
std::string printable(std::string_view text, LineBreaks lineBreaks);

// How many columns a printable text takes: two for each wide character, none for a combining one.
std::size_t displayWidth(std::string_view text);

// At most so many columns; what is cut ends in "…".
std::string cutToWidth(std::string_view text, std::size_t columns);

// Between two fields of a line.
inline constexpr std::string_view kGap = "  ";

// A line of a table, with its line feed: each printable field cut or filled up to its width, of which there
// are as many; the last one is only cut.
std::string alignedLine(std::span<const std::string> fields, std::span<const std::size_t> widths);

}  // namespace quorlo
