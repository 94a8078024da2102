#pragma once

#include "base/result.h"

#include <cstddef>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

using CsvRow = std::span<const std::u16string_view>;

// What of a table is read: up to the row that reaches one of the numbers.
struct CsvExtent {
  std::size_t rows = std::numeric_limits<std::size_t>::max();  // data rows
  std::size_t fields = std::numeric_limits<std::size_t>::max();
  std::size_t start = 0;  // the place of the first row in the text
};

// A table in a text, as CsvScanner reads it; 16 bytes a field. Any thread; the text must outlive it.
class CSwiftV {
 public:
  enum class Header { firstRow, none };

  // Fails where the scanner does.
  static Result<CSwiftV> parse(std::u16string_view text, char16_t separator, Header header,
                               CsvExtent extent = {});

  // Of the first row, without spaces and tabs at both ends; "Column 1", "Column 2" ... up to the widest row
  // where the first row is no header.
  const std::vector<std::u16string>& headers() const { return headers_; }
  std::size_t columnCount() const { return headers_.size(); }

  // The data rows. An empty line is a row without fields, that behind a final line feed too.
  const std::vector<CsvRow>& rows() const { return rows_; }

  // Each row's fields by header, paired by position; of columns of the same name the last. None without a
  // header row. Made at each call.
  std::vector<std::map<std::u16string_view, std::u16string_view>> keyedRows() const;

 private:
  CSwiftV() = default;

  Header header_ = Header::firstRow;
  std::vector<std::u16string> headers_;
  std::vector<std::u16string_view> fields_;  // of all rows; its memory moves with the table
  std::vector<CsvRow> rows_;
};

// Without spaces and tabs at both ends.
std::u16string trimmedHeader(std::u16string_view field);

// "Column 1" for the first, 0.
std::u16string columnName(std::size_t index);

}  // namespace quorlo
