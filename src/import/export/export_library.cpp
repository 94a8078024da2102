#include "import/export/export_library.h"

#include "base/file_draft.h"
#include "import/export/export_run.h"
#include "import/export/exported_records.h"
#include "import/export/library_csv.h"
#include "import/export/library_json.h"
#include "import/work_progress.h"

#include <cstring>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

Result<ExportReport> exportInto(ExportSink sink, const ManagedObjectContext& context,
                                const ExportSelection& selection, ExportFormat format,
                                WorkProgress& progress) {
  const auto records = exportedRecords(context, selection);
  if (!records) return records.error();
  ExportRun run(std::move(sink), progress, records.value().snippets.size());
  switch (format) {
    case ExportFormat::json:
      writeLibraryJson(records.value(), run);
      break;
    case ExportFormat::csv:
      writeLibraryCsv(records.value(), run);
      break;
  }
  return run.finish();
}

}  // namespace

Result<ExportReport> exportToFile(const ManagedObjectContext& context, const ExportSelection& selection,
                                  ExportFormat format, const std::filesystem::path& file,
                                  WorkProgress& progress) {
  FileDraft draft(file);
  if (auto status = draft.open(); !status) return status.error();
  auto report = exportInto([&draft](std::string_view utf8) { return draft.write(utf8); }, context, selection,
                           format, progress);
  if (!report) return report;
  if (auto status = draft.takePlace(); !status) return status.error();
  return report;
}

Result<ExportReport> exportToDescriptor(const ManagedObjectContext& context, const ExportSelection& selection,
                                        ExportFormat format, int descriptor, WorkProgress& progress) {
  const auto sink = [descriptor](std::string_view utf8) -> Status {
    const int reason = writeFully(descriptor, utf8);
    if (reason == 0) return {};
    return Error{"The export cannot be written: " + std::string(std::strerror(reason)) + "."};
  };
  return exportInto(sink, context, selection, format, progress);
}

Result<std::string> exportText(const ManagedObjectContext& context, const ExportSelection& selection,
                               ExportFormat format) {
  std::string text;
  WorkProgress progress;
  const auto sink = [&text](std::string_view utf8) -> Status {
    text += utf8;
    return {};
  };
  if (auto report = exportInto(sink, context, selection, format, progress); !report) return report.error();
  return text;
}

}  // namespace quorlo
