#pragma once

#include "import/import_options.h"
#include "ui/library/export_window.h"

#include <QObject>

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

class QMainWindow;
class QToolBar;

namespace quorlo {

class QLCategory;

// What leads from the library window to files and back.
struct LibraryFileServices {
  std::function<void(const std::vector<std::filesystem::path>&, const ImportOptions&)> importFiles;
  std::function<bool()> canUndoImport;
  std::function<void()> undoImport;
  std::function<void(const ExportOffer&)> exportSnippets;
  std::function<void()> showBackups;
};

// What the library window offers about files: a menu in its tool bar, and taking in what is dropped on it
// from a file manager. A child of the window.
class LibraryFiles final : public QObject {
 public:
  // `offer` tells what is selected.
  LibraryFiles(QMainWindow& window, LibraryFileServices services, std::function<ExportOffer()> offer);

  void addMenuTo(QToolBar& bar);
  void importInto(const std::vector<std::filesystem::path>& files, const std::shared_ptr<QLCategory>& folder);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void chooseFiles();

  QMainWindow& window_;
  LibraryFileServices services_;
  std::function<ExportOffer()> offer_;
};

}  // namespace quorlo
