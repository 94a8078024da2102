#include "ui/library/library_exporter.h"

#include "import/export/library_export.h"
#include "ui/import/progress_window.h"
#include "ui/import/report_window.h"
#include "ui/qt_text.h"

#include <QLocale>

#include <string>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

QString nameOf(const std::filesystem::path& file) {
  return QString::fromStdString(file.filename().string());
}

QString summaryOf(const ExportReport& report, const std::filesystem::path& file) {
  const auto summary = report.snippets == 1 ? localizedText(u"Exported 1 snippet to “%1”.")
                                            : localizedText(u"Exported %2 snippets to “%1”.");
  const auto count = QLocale().toString(static_cast<qulonglong>(report.snippets));
  const auto text =
      QString(summary).replace(QStringLiteral("%2"), count).replace(QStringLiteral("%1"), nameOf(file));
  if (report.warnings.empty()) return text;
  return text + QStringLiteral("\n\n") +
         localizedText(u"The file does not hold everything as it is in the library. A Quorlo library does.");
}

}  // namespace

LibraryExporter::LibraryExporter(LibraryExport& libraryExport, std::function<bool()> commitEditing)
    : export_(libraryExport), commitEditing_(std::move(commitEditing)) {}

LibraryExporter::~LibraryExporter() = default;

void LibraryExporter::begin(const ExportOffer& offer) {
  if (!export_.isRunning()) {
    window_ = std::make_unique<ExportWindow>(
        offer,
        [this](const ExportSelection& selection, ExportFormat format, const std::filesystem::path& file) {
          start(selection, format, file);
        },
        nullptr);
  }
  window_->show();
  window_->raise();
  window_->activateWindow();
}

void LibraryExporter::start(const ExportSelection& selection, ExportFormat format,
                            const std::filesystem::path& file) {
  if (!commitEditing_()) return;
  auto progress = std::make_unique<ProgressWindow>();
  export_.start(selection, format, file,
                [this, file](const Result<ExportReport>& result) { showResult(result, file); });
  progress->follow(localizedText(u"Exporting to “%1”…").arg(nameOf(file)), *export_.progress(),
                   [this] { export_.cancel(); });
  window_ = std::move(progress);
}

void LibraryExporter::showResult(const Result<ExportReport>& result, const std::filesystem::path& file) {
  if (!result && export_.progress()->isCancelled()) {
    window_.reset();
    return;
  }
  std::vector<ReportWindow::Row> rows;
  if (result) {
    for (const auto& each : result.value().warnings) {
      rows.emplace_back(toQString(each.snippet), toQString(each.message));
    }
  }
  const auto summary = result ? summaryOf(result.value(), file)
                              : localizedText(u"Nothing was exported.") + QLatin1Char('\n') +
                                    QString::fromStdString(result.error().message);
  auto report = std::make_unique<ReportWindow>(localizedText(u"Export"), summary, rows);
  report->present();
  window_ = std::move(report);
}

}  // namespace quorlo
