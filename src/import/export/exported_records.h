#pragma once

#include "base/result.h"
#include "import/export/export_selection.h"

#include <memory>
#include <string>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;
class QLSnippet;

// What a selection stands for, in the order in which it is written.
struct ExportedRecords {
  std::vector<std::shared_ptr<QLSnippet>> snippets;
  std::vector<std::shared_ptr<QLCategory>> folders;
  std::vector<std::string> excludedApplications;  // bundle identifiers
};

// An error when the library does not have what was chosen.
Result<ExportedRecords> exportedRecords(const ManagedObjectContext& context,
                                        const ExportSelection& selection);

}  // namespace quorlo
