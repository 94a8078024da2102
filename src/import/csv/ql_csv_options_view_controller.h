#pragma once

#include "base/life_token.h"
#include "base/observers.h"
#include "base/result.h"
#include "base/subscription.h"
#include "import/csv/csv_mapping.h"
#include "import/csv/csv_preview.h"
#include "import/csv/csv_records.h"
#include "import/csv/pop_up_button.h"
#include "import/csv/text_decoding.h"
#include "import/import_data.h"
#include "import/import_options.h"
#include "import/work_progress.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class BackgroundQueue;
class MainQueue;
class SettingsController;

// The window in which the user says what is what in the tables to be imported, without its looks: the first
// file is shown, and what is chosen holds for all. Files are read, taken apart and made into records in the
// background. Main thread.
class QLCSVOptionsViewController {
 public:
  struct Dependencies {
    MainQueue& queue;
    BackgroundQueue& background;
    const SettingsController& settings;
  };
  using ImportRecords = std::function<void(std::shared_ptr<const ImportData> records, ImportOptions options)>;
  struct ProgressIndicator {
    bool isAnimating = false;
    double fraction = 0;  // changes without the observers being told
  };

  // The references outlive the controller, the queue what is under way in the background too. There is a file
  // at least. `importRecords` gets the records once the user has confirmed, and may destroy the controller.
  QLCSVOptionsViewController(const Dependencies& dependencies,
                             std::vector<std::filesystem::path> importedCSVURLs, ImportRecords importRecords);
  QLCSVOptionsViewController(const QLCSVOptionsViewController&) = delete;
  QLCSVOptionsViewController& operator=(const QLCSVOptionsViewController&) = delete;
  ~QLCSVOptionsViewController();

  // Begins to read the first file.
  void viewDidAppear();

  // What the user does. A choice of a column is kept for as long as there is such a column. Whether there is
  // a header is guessed until the user says it.
  void changeSeperator(std::size_t segment);  // of kSeparators
  void setHasHeader(bool hasHeader);
  void selectTitle(std::size_t item) { select(Role::title, item); }
  void selectAbbreviation(std::size_t item) { select(Role::abbreviation, item); }
  void selectText(std::size_t item) { select(Role::text, item); }
  void setImportOptions(ImportOptions options) { importOptions_ = std::move(options); }
  // Makes the records of all files, hands them on and closes. Where a file cannot be read the error is
  // shown instead, and nothing is imported.
  void confirmOptions();
  // Closes without importing, whatever is under way.
  void cancel();

  // After every change of what follows.
  Subscription observe(std::function<void()> changed) { return observers_.add(std::move(changed)); }

  const std::vector<std::filesystem::path>& importedCSVURLs() const { return importedCSVURLs_; }
  std::u16string urlTextField() const;
  std::size_t seperatorSegmentedControl() const { return separator_; }
  bool hasHeaderCheckbox() const { return hasHeader_; }
  const PopUpButton& titlePopUpButton() const { return popUpButtons_[0]; }
  const PopUpButton& abbreviationPopUpButton() const { return popUpButtons_[1]; }
  const PopUpButton& textPopUpButton() const { return popUpButtons_[2]; }
  const ImportOptions& importOptions() const { return importOptions_; }
  ProgressIndicator progressIndicator() const;

  // The table as it is known by now: its beginning comes long before the number of its rows.
  const std::vector<std::u16string>& headers() const { return preview_.headers; }
  const std::vector<std::vector<std::u16string>>& previewRows() const { return preview_.rows; }
  std::optional<std::size_t> rowCount() const;
  CsvColumns selectedColumns() const;
  std::u16string question() const;                        // what the user should choose; empty for nothing
  std::u16string notice() const;                          // sentences; empty for none
  const std::u16string& error() const { return error_; }  // of the last thing that was tried, or empty

  bool canConfirm() const;
  bool importCSVSnippets() const { return importCSVSnippets_; }  // the user has confirmed
  bool isClosed() const { return isClosed_; }
  // From the confirming on, when they are made.
  const std::shared_ptr<const ImportData>& importedRecords() const { return importedRecords_; }

 private:
  enum Role : std::size_t { title, abbreviation, text };

  // Calls off what is under way; runs `work(progress)` in the background and then, unless called off in turn,
  // `done(outcome)` here.
  template <class Work, class Done>
  void inBackground(Work work, Done done);
  void callOff();

  void parseAgain();
  void didParseBeginning(Result<CsvPreview> preview);
  void examine();
  void fillPopUpButtons();
  void select(Role role, std::size_t item);
  void failToParse(const Error& reason);
  void fail(const Error& error);
  CsvMapping mapping() const;

  Dependencies its_;
  std::vector<std::filesystem::path> importedCSVURLs_;
  ImportRecords importRecords_;
  ImportOptions importOptions_;

  std::size_t separator_ = 0;
  bool separatorIsChosen_ = false;
  bool hasHeader_ = true;
  bool hasHeaderIsChosen_ = false;
  std::array<PopUpButton, 3> popUpButtons_;
  std::array<std::optional<std::optional<std::size_t>>, 3> chosenColumns_;  // by the user

  std::shared_ptr<const DecodedText> text_;  // of the first file, once it is read
  CsvPreview preview_;
  bool previewIsCurrent_ = false;
  std::optional<CsvFindings> findings_;  // of the chosen columns
  std::u16string error_;
  bool importCSVSnippets_ = false;
  bool isClosed_ = false;
  std::shared_ptr<const ImportData> importedRecords_;

  std::shared_ptr<WorkProgress> work_;  // what is under way
  Observers<> observers_;
  LifeToken life_;
};

}  // namespace quorlo
