#pragma once

namespace quorlo {

struct ExportedRecords;
class ExportRun;

// Writes a table of titles, abbreviations and plain texts (docs/formats.md), with a warning for each snippet
// of which a reader gets something else.
void writeLibraryCsv(const ExportedRecords& records, ExportRun& run);

}  // namespace quorlo
