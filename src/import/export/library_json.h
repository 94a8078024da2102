#pragma once

namespace quorlo {

struct ExportedRecords;
class ExportRun;

// Writes a library document (docs/formats.md), a line for each snippet and folder. Of a picture or rich text
// no more is in memory than belongs to one snippet. What older versions or other devices may have left in a
// library and no document may hold (one uuid twice, unknown types) is written as what it amounts to.
void writeLibraryJson(const ExportedRecords& records, ExportRun& run);

}  // namespace quorlo
