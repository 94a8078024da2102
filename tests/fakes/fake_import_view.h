#pragma once

#include "app/shell/files/import_view.h"
#include "import/csv/ql_csv_options_view_controller.h"
#include "import/import_report.h"
#include "text/utf.h"

#include <string>

namespace quorlo {

// Says what is on the screen, as "options table.csv", "progress", "report" with its summary, or the message.
class FakeImportView : public ImportView {
 public:
  void setEvents(Events events) override { user = std::move(events); }
  void showOptions(QLCSVOptionsViewController& controller) override {
    screen = "options";
    for (const auto& each : controller.importedCSVURLs()) screen += " " + each.filename().string();
    options = &controller;
    controller.viewDidAppear();
  }
  void showProgress(const std::u16string&, const WorkProgress&) override { show("progress"); }
  void showReport(const ImportReport& report) override { show("report: " + toUtf8(summary(report))); }
  void showMessage(const std::u16string& message, const std::u16string& informativeText) override {
    show(toUtf8(message) + " " + toUtf8(informativeText));
  }
  void close() override { show(""); }

  Events user;
  std::string screen;
  QLCSVOptionsViewController* options = nullptr;

 private:
  void show(std::string what) {
    screen = std::move(what);
    options = nullptr;
  }
};

}  // namespace quorlo
