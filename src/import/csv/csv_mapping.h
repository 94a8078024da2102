#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// Which column of a table has what, counted from 0. What has no column has no value.
struct CsvColumns {
  std::optional<std::size_t> title;
  std::optional<std::size_t> abbreviation;
  std::optional<std::size_t> text;

  bool operator==(const CsvColumns&) const = default;
};

// How a table is read. What is left open is guessed from the table.
struct CsvMapping {
  std::optional<char16_t> separator;
  bool hasHeader = true;
  std::optional<CsvColumns> columns;
};

// By the names of the columns, English or German; where they say nothing, by position: the text alone, the
// abbreviation and the text, or title, abbreviation and text.
CsvColumns guessColumns(const std::vector<std::u16string>& headers);

}  // namespace quorlo
