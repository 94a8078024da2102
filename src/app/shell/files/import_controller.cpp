#include "app/shell/files/import_controller.h"

#include "app/shell/files/import_view.h"
#include "app/shell/menu/navigation_model.h"
#include "base/localized.h"
#include "base/log.h"
#include "import/csv/ql_csv_options_view_controller.h"
#include "import/file_import.h"
#include "import/library_import.h"
#include "import/work_progress.h"
#include "store/context/managed_object_context.h"
#include "store/localized_format.h"
#include "store/persistence_controller.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <utility>

namespace quorlo {
namespace {

std::u16string reasons(const std::vector<Error>& errors) {
  std::u16string text;
  for (const auto& each : errors) text += (text.empty() ? u"" : u"\n\n") + toUtf16(each.message);
  return text;
}

}  // namespace

ImportController::ImportController(const Dependencies& dependencies) : its_(dependencies) {
  its_.view.setEvents({
      .cancelOptions = [this] { close(); },
      .cancelImport = [this] { its_.libraryImport.cancel(); },
      .undoImport = [this] { undoImport(); },
      .showImported =
          [this] {
            close();
            showImported();
          },
      .saveReport = [this](const auto& file) { saveReport(file); },
      .closeReport = [this] { close(); },
  });
}

ImportController::~ImportController() {
  its_.view.close();
}

void ImportController::importFiles(const std::vector<std::filesystem::path>& files,
                                   const ImportOptions& options) {
  Job tables{.files = {}, .options = options, .isTables = true};
  Job others{.files = {}, .options = options, .isTables = false};
  for (const auto& each : files) (isTable(each) ? tables : others).files.push_back(each);
  for (auto* each : {&others, &tables}) {
    if (!each->files.empty()) jobs_.push_back(std::move(*each));
  }
  if (isBusy()) return;
  report_.reset();
  close();
}

void ImportController::beginNext() {
  if (jobs_.empty()) return;
  const auto job = std::move(jobs_.front());
  jobs_.pop_front();
  if (job.isTables) return showOptions(job);
  setStage(Stage::working);
  its_.libraryImport.importFiles(job.files, job.options, [this](const auto& report) { didImport(report); });
  its_.view.showProgress(localized(u"Importing…"), its_.libraryImport.progress());
}

void ImportController::showOptions(const Job& job) {
  setStage(Stage::options);
  options_ = std::make_unique<QLCSVOptionsViewController>(
      QLCSVOptionsViewController::Dependencies{its_.queue, its_.background, its_.settings}, job.files,
      [this](auto records, auto options) { importRecords(std::move(records), options); });
  options_->setImportOptions(job.options);
  its_.view.showOptions(*options_);
}

void ImportController::importRecords(std::shared_ptr<const ImportData> records,
                                     const ImportOptions& options) {
  setStage(Stage::working);
  its_.libraryImport.importData(std::move(records), options,
                                [this](const auto& report) { didImport(report); });
  its_.view.showProgress(localized(u"Importing…"), its_.libraryImport.progress());
  options_.reset();
}

void ImportController::didImport(const Result<ImportReport>& result) {
  if (!result && its_.libraryImport.progress().isCancelled()) return close();
  if (!result) return showMessage(localized(u"The import failed."), toUtf16(result.error().message));
  report_ = std::make_shared<const ImportReport>(result.value());
  logInfo(fmt::format("Imported {} snippets.", report_->addedSnippets));
  if (report_->addedNothing() && report_->notices.empty() && !report_->refusedFiles.empty()) {
    return showMessage(localized(u"Nothing was imported."), reasons(report_->refusedFiles));
  }
  if (!report_->addedNothing()) {
    lastImport_ = report_;
    showImported();
  }
  setStage(Stage::report);
  its_.view.showReport(*report_);
}

void ImportController::undoImport() {
  if (!canUndo()) return;
  setStage(Stage::working);
  report_.reset();
  arrival_.reset();
  its_.libraryImport.undo(lastImport_, [this](const auto& undone) { didUndo(undone); });
  its_.view.showProgress(localized(u"Undoing the import…"), its_.libraryImport.progress());
}

void ImportController::didUndo(const Result<UndoneImport>& undone) {
  if (undone) {
    lastImport_.reset();
    return showMessage(localized(u"The import was undone."), summary(undone.value()));
  }
  if (its_.libraryImport.progress().isCancelled()) return close();
  showMessage(localized(u"The import could not be undone."), toUtf16(undone.error().message));
}

void ImportController::showMessage(const std::u16string& message, const std::u16string& informativeText) {
  setStage(Stage::message);
  its_.view.showMessage(message, informativeText);
}

void ImportController::saveReport(const std::filesystem::path& file) {
  if (!report_) return;
  if (const auto saved = quorlo::saveReport(*report_, file); !saved) {
    showMessage(localized(u"The report could not be saved."), toUtf16(saved.error().message));
  }
}

// What came is in the file first, and in the main context soon after.
void ImportController::showImported() {
  if (!lastImport_) return;
  its_.navigation.showSnippetEditor();
  if (selectImported()) return;
  arrival_ = its_.persistence.managedObjectContext().observeObjectsDidChange([this](const ChangeSet&) {
    if (selectImported()) arrival_.reset();
  });
}

// A snippet that came alone, else the folder of all that came. False when it is not here yet.
bool ImportController::selectImported() {
  const auto& imported = lastImport_->imported;
  if (lastImport_->addedSnippets == 1) {
    const auto snippet = its_.persistence.snippet(imported.front().snippets.front());
    if (snippet) its_.navigation.select(snippet);
    return snippet != nullptr;
  }
  const auto destination = lastImport_->destination();
  const auto folder = destination.empty() ? its_.persistence.builtInFolder(CategoryType::AllSnippets)
                                          : its_.persistence.folder(destination);
  if (folder) its_.navigation.setSelectedCategory(folder);
  return folder != nullptr || destination.empty();
}

// A message over the report leads back to it.
void ImportController::close() {
  if (stage_ == Stage::message && report_ && !report_->addedNothing()) {
    setStage(Stage::report);
    return its_.view.showReport(*report_);
  }
  its_.view.close();
  options_.reset();
  report_.reset();
  setStage(Stage::idle);
  beginNext();
}

void ImportController::setStage(Stage stage) {
  stage_ = stage;
  observers_.notify();
}

}  // namespace quorlo
