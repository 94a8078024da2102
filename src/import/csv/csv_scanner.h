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

  // The separator is neither a quotation mark nor a line end.
  CsvScanner(std::u16string_view text, char16_t separator) : text_(text), separator_(separator) {}

  // Replaces `fields`. False at the end of the text and at a row that is too wide, which status() tells.
  bool next(CsvFields& fields);

  const Status& status() const { return status_; }

  // How much of the text has been read, in UTF-16 units.
  std::size_t position() const { return position_; }

  // Of the last row read, when its last quotation mark is not closed before the text ends: the line in which
  // it begins, counted from 1.
  std::optional<std::size_t> unclosedLine() const;

 private:
  std::size_t line() const;

  std::u16string_view text_;
  char16_t separator_;
  std::size_t rowStart_ = 0;
  std::size_t position_ = 0;
  bool isQuoted_ = false;
  bool isAtEnd_ = false;
  Status status_;
};

}  // namespace quorlo
