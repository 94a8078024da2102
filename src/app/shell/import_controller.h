#pragma once

#include "base/life_token.h"
#include "base/result.h"
#include "base/subscription.h"
#include "import/import_options.h"
#include "import/import_report.h"
#include "import/library_import.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorlo {

class ImportView;
class ManagedObjectContext;
class NavigationModel;
class QLCSVOptionsViewController;

// Leads the user through an import: tables by way of their options, other files at once, then the report,
// from which the import can be undone. Files that come meanwhile wait. One instance; main thread.
class ImportController {
 public:
  struct Dependencies {
    ManagedObjectContext& context;
    NavigationModel& navigation;
    LibraryImport& libraryImport;
    ImportView& view;
    // The controller of the options of these tables, which hands its records to `confirmed`.
    std::function<std::unique_ptr<QLCSVOptionsViewController>(
        const std::vector<std::filesystem::path>& tables,
        std::function<void(std::shared_ptr<const ImportData>, ImportOptions)> confirmed)>
        makeOptions;
  };

  explicit ImportController(Dependencies dependencies);
  ImportController(const ImportController&) = delete;
  ImportController& operator=(const ImportController&) = delete;
  ~ImportController();

  // Files that were opened with the program, dropped on it (then perhaps on a folder) or chosen.
  void importFiles(const std::vector<std::filesystem::path>& files, const ImportOptions& options = {});

 private:
  Dependencies its_;
};

}  // namespace quorlo
