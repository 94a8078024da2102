#pragma once

#include "base/result.h"
#include "import/import_report.h"

#include <filesystem>

namespace quorlo {

// The last import of a library, kept beside it ("last-import.json") without any text, so that another process
// can take it back with undoImport. An import that has added nothing does not count. Any thread.

Status rememberImport(const ImportReport& report, const std::filesystem::path& dataDirectory);

// What the library has got; all else in the report is empty. An error where there is no import to take back.
Result<ImportReport> lastImport(const std::filesystem::path& dataDirectory);

void forgetImport(const std::filesystem::path& dataDirectory);

}  // namespace quorlo
