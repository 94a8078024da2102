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

  bool has(std::size_t column) const { return title == column || abbreviation == column || text == column; }
};

// How a table is read. What is left open is guessed from the table.
struct CsvMapping {
  std::optional<char16_t> separator;
  std::optional<bool> hasHeader;
  std::optional<CsvColumns> columns;
};

// Why a guess may leave out texts, so that the user has to be asked.
enum class CsvDoubt {
  none,
  columns,  // some columns are known by their names, others that may matter are not
  header,   // the first row may have names of columns or be a snippet
  tooMany,  // no column is known by its name, and there are more than three
  uneven,   // no column is known by its name, and the rows have different numbers of fields
};

struct CsvGuess {
  CsvColumns columns;
  CsvDoubt doubt = CsvDoubt::none;

  bool operator==(const CsvGuess&) const = default;
};

// By the names of the columns; where they say nothing, by position. A column with an empty name is one that
// holds nothing.
CsvGuess guessColumns(const std::vector<std::u16string>& names);

// Without names: one column is the text, two are abbreviation and text, three title, abbreviation and text.
CsvGuess guessColumnsByPosition(std::size_t count);

// Whether a first row has names of columns: short fields, one of which is known as such a name.
bool isHeader(const std::vector<std::u16string>& firstRow);

// Whether it names enough columns to be no snippet ("name,Ada Lovelace").
bool isCertainHeader(const std::vector<std::u16string>& firstRow);

}  // namespace quorlo
