#pragma once

#include "base/result.h"
#include "import/import_data.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace quorlo {

class WorkProgress;
struct CsvMapping;

// What the rows of a table hold, in one pass over its text each. The errors are localized parts of sentences;
// a cancelled call is one too. Any thread.

// The mapping with all that was left open guessed from the table.
Result<CsvMapping> completed(CsvMapping mapping, std::u16string_view text);

struct CsvRowCount {
  std::size_t rows = 0;                     // data rows that are not empty
  std::size_t columns = 0;                  // of the widest row, the header included
  std::optional<std::size_t> unclosedLine;  // where a row begins whose quotation mark is never closed
};

// Of a mapping with its separator.
Result<CsvRowCount> countRows(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress);

struct CsvRecords {
  std::vector<ImportedSnippet> snippets;
  CsvRowCount count;
};

// A snippet for each data row but the empty ones, in which no field has anything: blank lines, that behind
// a final line feed, or separators alone. The mapping is complete. Columns that no row has, and more than two
// million rows are errors.
Result<CsvRecords> csvRecords(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress);

}  // namespace quorlo
