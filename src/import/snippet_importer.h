#pragma once

#include "base/result.h"
#include "import/import_data.h"
#include "import/import_options.h"
#include "import/import_report.h"

#include <cstddef>
#include <string>

namespace quorlo {

class ManagedObjectContext;
class WorkProgress;

// Puts what was read into the library and saves once: all of it or nothing. After an error, which says what
// to do, and when it is cancelled (an error too), the context is as it was before. On the context's thread.
Result<ImportReport> importSnippets(const ImportData& data, const ImportOptions& options,
                                    ManagedObjectContext& context, WorkProgress& progress);

struct UndoneImport {
  std::size_t removedSnippets = 0;
  std::size_t keptSnippets = 0;  // used or changed since, or in the trash
  std::size_t removedFolders = 0;
};
// In words for the user.
std::u16string summary(const UndoneImport& undone);

// Takes what the import has added out of the library again, the folders that are empty then included, moves
// what it has taken out of the trash back there, and
// saves once, all or nothing as above. What is gone already is no error.
Result<UndoneImport> undoImport(const ImportReport& report, ManagedObjectContext& context,
                                WorkProgress& progress);

}  // namespace quorlo
