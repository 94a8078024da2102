#pragma once

#include "base/result.h"
#include "import/csv/csv_findings.h"
#include "import/import_data.h"

#include <string_view>

namespace quorlo {

class WorkProgress;
struct CsvMapping;

// What the rows of a table hold, in one pass over its text each. The errors are localized parts of sentences;
// a cancelled call is one too. Any thread.

// The mapping with all that was left open guessed from the table. A guess that may leave out texts is an
// error, which names the options of the command line: windows ask before.
Result<CsvMapping> completed(CsvMapping mapping, std::u16string_view text);

// Of a complete mapping.
Result<CsvFindings> examineRows(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress);

struct CsvRecords {
  std::vector<ImportedSnippet> snippets;
  CsvFindings findings;
};

// A snippet for each data row but the empty ones, in which no field has anything (blank lines, that behind
// a final line feed, or separators alone), and those that have an abbreviation without a text. The mapping is
// complete. Columns that no row has, and more than two million rows are errors.
Result<CsvRecords> csvRecords(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress);

}  // namespace quorlo
