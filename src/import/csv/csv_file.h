#pragma once

#include "base/result.h"
#include "import/csv/text_decoding.h"
#include "import/import_data.h"

#include <filesystem>

namespace quorlo {

class WorkProgress;
struct CsvMapping;

// Reads the rows of a table as snippets: all of them, or an error, which is a sentence for the user with the
// file's name. Texts stand as they do in the file, with their line ends and doubled quotation marks. Any
// thread. A cancelled call is an error too.
Result<ImportData> readCsvFile(const std::filesystem::path& file, const CsvMapping& mapping,
                               WorkProgress& progress);

// The parts of it, for whoever shows the table first. The errors are like those above.
Result<DecodedText> readCsvText(const std::filesystem::path& file, WorkProgress& progress);
// The mapping leaves nothing open.
Result<ImportData> readCsvRecords(const std::filesystem::path& file, const DecodedText& decoded,
                                  const CsvMapping& mapping, WorkProgress& progress);

}  // namespace quorlo
