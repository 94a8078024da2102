#pragma once

#include "app/shell/files/import_view.h"

#include <QObject>

#include <memory>

class QWidget;

namespace quorlo {

class CsvOptionsWindow;
class ManagedObjectContext;
class ProgressWindow;
class ReportWindow;

// The windows of an import.
class QtImportView final : public ImportView {
 public:
  // The library, whose folders are offered, must outlive the view.
  explicit QtImportView(const ManagedObjectContext& library);
  ~QtImportView() override;

  void setEvents(Events events) override { events_ = std::move(events); }
  void showOptions(QLCSVOptionsViewController& controller) override;
  void showProgress(const std::u16string& message, const WorkProgress& progress) override;
  void showReport(const ImportReport& report) override;
  void showMessage(const std::u16string& message, const std::u16string& informativeText) override;
  void close() override;

 private:
  void later(std::function<void()> event);
  void show(std::unique_ptr<QWidget> window);
  void chooseReportFile();

  const ManagedObjectContext& library_;
  Events events_;
  std::unique_ptr<QWidget> window_;  // the one on the screen
  QObject turn_;                     // of the event loop that an event comes in
};

}  // namespace quorlo
