#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

namespace quorlo {

class QLCSVOptionsViewController;
class WorkProgress;
struct ImportReport;

// The windows of an import: the options of a table, the progress, the report. One of them is on the screen at
// a time; showing one closes the other. Main thread.
class ImportView {
 public:
  // What the user does in them.
  struct Events {
    std::function<void()> cancelOptions;  // the window of a table's options was closed or cancelled
    std::function<void()> cancelImport;   // Cancel beside the progress bar; the window stays until close()
    std::function<void()> undoImport;     // of the report shown
    std::function<void()> showImported;   // to see in the library what came; ends the report like closeReport
    std::function<void(const std::filesystem::path& file)> saveReport;
    std::function<void()> closeReport;  // the user is done with the report or message
  };

  virtual ~ImportView() = default;

  // Set once, before anything is shown.
  virtual void setEvents(Events events) = 0;

  // Shows the options of the tables that the controller has been given. The controller, which has the folder
  // and the confirming too, lives until another window is shown or close() is called.
  virtual void showOptions(QLCSVOptionsViewController& controller) = 0;

  // The bar follows the progress, which lives until another window is shown or close() is called. It may be
  // shown a moment later only, so that short imports do not flicker.
  virtual void showProgress(const std::u16string& message, const WorkProgress& progress) = 0;

  // What came of an import, with "Undo Import" (unless it added nothing) and "Save Report…".
  virtual void showReport(const ImportReport& report) = 0;

  // A short message after undoing or instead of a report: text, and below it what to do.
  virtual void showMessage(const std::u16string& message, const std::u16string& informativeText) = 0;

  // Closes what is shown without an event.
  virtual void close() = 0;
};

}  // namespace quorlo
