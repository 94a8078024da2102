#pragma once

#include "base/result.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace quorlo {

// A row's fields, in order.
using CsvFields = std::vector<std::u16string_view>;

// Reads a table row by row in one pass, without copying: the fields are views into the text.
//
// Rows end at line feeds, fields at the separator, but not inside quotation marks: where an odd number of
// them stands between the beginning of the field and the place, it is part of the field. A row loses carriage
// returns and line feeds at both ends, then a field in quotation marks loses these. Doubled ones inside stay.
// An empty row has no fields. Any thread; the text must outlive scanner and fields.
class CsvScanner {
 public:
  // Wider rows are no table but a wrong separator.
  static constexpr std::size_t kMostColumns = 1'000'000;

  // The separator is neither a quotation mark nor a line end. Reading begins at `start`, a row's first place.
  CsvScanner(std::u16string_view text, char16_t separator, std::size_t start = 0)
      : text_(text), separator_(separator), position_(start) {}

  // Replaces `fields`. False at the end of the text and at a row that is too wide, which status() tells.
  bool next(CsvFields& fields);

  const Status& status() const { return status_; }

  // How much of the text has been read, in UTF-16 units.
  std::size_t position() const { return position_; }

  // The line in which the last row read begins, counted from 1. Asked for each row, it costs one pass.
  std::size_t line();
  // The same when its last quotation mark is not closed before the text ends.
  std::optional<std::size_t> unclosedLine();

 private:
  std::u16string_view text_;
  char16_t separator_;
  std::size_t rowStart_ = 0;
  std::size_t position_;
  std::size_t countedTo_ = 0;
  std::size_t countedLines_ = 0;
  bool isQuoted_ = false;
  bool isAtEnd_ = false;
  Status status_;
};

}  // namespace quorlo
