#pragma once

#include "import/csv/csv_mapping.h"
#include "import/csv/csv_scanner.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// Some lines of a table: how many, and the first ten by number.
struct CsvLines {
  static constexpr std::size_t kMostNumbers = 10;

  std::size_t count = 0;
  std::vector<std::size_t> numbers;
};

// What the rows of a table hold beside what is taken from them.
struct CsvFindings {
  std::size_t rows = 0;     // data rows that are not empty
  std::size_t columns = 0;  // of the widest row, the header included
  std::optional<std::size_t> headerLine;
  std::vector<std::u16string> columnNames;  // as the header has them, or "Column 1"
  std::vector<std::size_t> leftOutColumns;  // of these, with something in them
  CsvLines widerRows;                       // with something behind the columns
  CsvLines doubledQuotes;                   // rows with doubled quotation marks in a field that is taken
  CsvLines keptQuotes;                      // with a blank beside the quotation marks around such a field
  CsvLines joinedLines;                     // rows over several lines by a quotation mark within a text
  CsvLines withoutText;                     // rows of an abbreviation and no text, which are not taken
  std::optional<std::size_t> unclosedLine;  // where a row begins whose quotation mark is never closed
};

// Collects the findings row by row, with the scanner on the row. The text outlives it.
class CsvExamination {
 public:
  // Without a header the table has the columns that most rows have.
  CsvExamination(std::u16string_view text, const CsvColumns& columns, std::size_t usualColumns);

  void takeHeader(const CsvFields& row, CsvScanner& scanner);
  // False for a row that is no snippet.
  bool take(const CsvFields& row, CsvScanner& scanner);
  CsvFindings finish(CsvScanner& scanner);

 private:
  void lookAtQuotes(const CsvFields& row, CsvScanner& scanner);

  std::u16string_view text_;
  CsvColumns columns_;
  std::vector<bool> isFilled_;  // by column
  CsvFindings findings_;
};

}  // namespace quorlo
