#pragma once

#include "base/result.h"
#include "import/export/export_report.h"
#include "import/export/export_selection.h"
#include "ui/library/export_window.h"

#include <filesystem>
#include <functional>
#include <memory>

class QWidget;

namespace quorlo {

class LibraryExport;

// Leads the user through an export: what, in which form and to which file, then how far it is, then what came
// of it. Main thread.
class LibraryExporter {
 public:
  // The export outlives the exporter. `commitEditing` takes over what is being edited; false calls off.
  LibraryExporter(LibraryExport& libraryExport, std::function<bool()> commitEditing);
  ~LibraryExporter();

  // While an export is under way it brings that one to the front.
  void begin(const ExportOffer& offer);

 private:
  void start(const ExportSelection& selection, ExportFormat format, const std::filesystem::path& file);
  void showResult(const Result<ExportReport>& result, const std::filesystem::path& file);

  LibraryExport& export_;
  std::function<bool()> commitEditing_;
  std::unique_ptr<QWidget> window_;  // the one on the screen
};

}  // namespace quorlo
