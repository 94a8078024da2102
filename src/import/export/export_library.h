#pragma once

#include "base/result.h"
#include "import/export/export_report.h"
#include "import/export/export_selection.h"

#include <filesystem>
#include <string>

namespace quorlo {

class ManagedObjectContext;
class WorkProgress;

// Writes snippets out of a context, unsaved changes included; on the context's thread, which is busy so long.
// Cancelling the progress ends an export with an error. Errors are sentences for the user.

// The file is there whole or not at all; one that is there before stays as it is until the new one is
// complete.
Result<ExportReport> exportToFile(const ManagedObjectContext& context, const ExportSelection& selection,
                                  ExportFormat format, const std::filesystem::path& file,
                                  WorkProgress& progress);

// As it comes, such as to the standard output.
Result<ExportReport> exportToDescriptor(const ManagedObjectContext& context, const ExportSelection& selection,
                                        ExportFormat format, int descriptor, WorkProgress& progress);

// As one text, for the pasteboard and for what is dragged.
Result<std::string> exportText(const ManagedObjectContext& context, const ExportSelection& selection,
                               ExportFormat format);

}  // namespace quorlo
