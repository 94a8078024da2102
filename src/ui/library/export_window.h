#pragma once

#include "import/export/export_selection.h"

#include <QDialog>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QRadioButton;

namespace quorlo {

// What a user may want to export, as the library window stands.
struct ExportOffer {
  struct Folder {
    std::string uuid;
    QString title;
  };
  std::optional<Folder> folder;       // the selected one
  std::vector<std::string> snippets;  // uuids of the selected ones
};

// What is to be exported and in which form; then the file.
class ExportWindow final : public QDialog {
 public:
  using Chosen = std::function<void(ExportSelection, ExportFormat, std::filesystem::path)>;

  // `chosen` is called once the user has chosen all of it, and may destroy the window.
  ExportWindow(const ExportOffer& offer, Chosen chosen, QWidget* parent);

 private:
  QWidget* makeSelectionPart();
  QWidget* makeFormatPart();
  ExportSelection selection() const;
  ExportFormat format() const;
  void chooseFile();

  ExportOffer offer_;
  Chosen chosen_;
  QRadioButton* library_;
  QRadioButton* folder_;
  QRadioButton* snippets_;
  QRadioButton* document_;
  QRadioButton* table_;
};

}  // namespace quorlo
