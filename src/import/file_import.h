#pragma once

#include "base/result.h"
#include "import/csv/csv_mapping.h"
#include "import/import_options.h"
#include "import/import_report.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class WorkProgress;

// A table, whose columns the user names first. Looks into files that are tables by their names.
bool isTable(const std::filesystem::path& file);

// Imports a file of any kind of import_file_kind.h; one whose ending says nothing is told by its content. A
// table needs a mapping; other kinds ignore it. All or nothing, as with importSnippets, and saved.
Result<ImportReport> importFile(const std::filesystem::path& file, const std::optional<CsvMapping>& mapping,
                                const ImportOptions& options, ManagedObjectContext& context,
                                WorkProgress& progress);

// Several files in one step with one save; those that cannot be read are in the report's refusedFiles, and
// the others are imported all the same. Tables share the mapping.
Result<ImportReport> importFiles(const std::vector<std::filesystem::path>& files,
                                 const std::optional<CsvMapping>& mapping, const ImportOptions& options,
                                 ManagedObjectContext& context, WorkProgress& progress);

}  // namespace quorlo
