#include "ui/import/qt_import_view.h"

#include "import/import_report.h"
#include "ui/import/csv_options_window.h"
#include "ui/import/progress_window.h"
#include "ui/import/report_window.h"
#include "ui/qt_text.h"

#include <QFileDialog>
#include <QTimer>

#include <utility>
#include <vector>

namespace quorlo {
namespace {

std::vector<ReportWindow::Row> rowsOf(const ImportReport& report) {
  std::vector<ReportWindow::Row> rows;
  for (const auto& each : report.refusedFiles)
    rows.emplace_back(QString(), QString::fromStdString(each.message));
  for (const auto& each : report.notices) rows.emplace_back(toQString(each.snippet), toQString(each.message));
  return rows;
}

}  // namespace

QtImportView::QtImportView(const ManagedObjectContext& library) : library_(library) {}
QtImportView::~QtImportView() = default;

// An event may end in the closing of the window that it comes from.
void QtImportView::later(std::function<void()> event) {
  QTimer::singleShot(0, &turn_, std::move(event));
}

void QtImportView::show(std::unique_ptr<QWidget> window) {
  window_ = std::move(window);
  window_->show();
  window_->raise();
  window_->activateWindow();
}

void QtImportView::showOptions(QLCSVOptionsViewController& controller) {
  show(std::make_unique<CsvOptionsWindow>(controller, library_, [this] { later(events_.cancelOptions); }));
}

void QtImportView::showProgress(const std::u16string& message, const WorkProgress& progress) {
  auto window = std::make_unique<ProgressWindow>();
  window->follow(toQString(message), progress, [this] { later(events_.cancelImport); });
  window_ = std::move(window);
}

void QtImportView::showReport(const ImportReport& report) {
  auto window = std::make_unique<ReportWindow>(localizedText(u"Import Finished"), toQString(summary(report)),
                                               rowsOf(report));
  window->addButton(u"Save Report…", QDialogButtonBox::ActionRole, [this] { chooseReportFile(); });
  if (!report.addedNothing()) {
    window->addButton(u"Undo Import", QDialogButtonBox::ActionRole, [this] { later(events_.undoImport); });
    window->addButton(u"Show", QDialogButtonBox::ActionRole, [this] { later(events_.showImported); });
  }
  QObject::connect(window.get(), &QDialog::finished, &turn_, [this] { later(events_.closeReport); });
  window_ = std::move(window);
  static_cast<ReportWindow&>(*window_).present();
}

void QtImportView::chooseReportFile() {
  auto* const dialog = new QFileDialog(window_.get(), localizedText(u"Save Report"),
                                       localizedText(u"Import Report") + QStringLiteral(".txt"),
                                       localizedText(u"Text files") + QStringLiteral(" (*.txt)"));
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("txt"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dialog, &QFileDialog::fileSelected, &turn_, [this](const QString& file) {
    later([this, file] { events_.saveReport(file.toStdString()); });
  });
  dialog->open();
}

void QtImportView::showMessage(const std::u16string& message, const std::u16string& informativeText) {
  const auto text = informativeText.empty() ? message : message + u"\n\n" + informativeText;
  auto window = std::make_unique<ReportWindow>(localizedText(u"Import Snippets"), toQString(text),
                                               std::vector<ReportWindow::Row>());
  QObject::connect(window.get(), &QDialog::finished, &turn_, [this] { later(events_.closeReport); });
  window_ = std::move(window);
  static_cast<ReportWindow&>(*window_).present();
}

void QtImportView::close() {
  window_.reset();
}

}  // namespace quorlo
