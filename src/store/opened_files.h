#pragma once

#include "base/result.h"
#include "store/library_document.h"

#include <filesystem>
#include <vector>

namespace quorlo {

class ManagedObjectContext;

// What became of files that were opened with the program.
struct OpenedFiles {
  LibraryReadReport report;    // of those that were read, taken together
  std::vector<Error> refused;  // the others, each with the file's name and what to do, for the user
};

// Takes the snippets of library documents (.quorlo, .json) into the library, each file on its own. The
// context is not saved.
OpenedFiles readOpenedFiles(const std::vector<std::filesystem::path>& files, ManagedObjectContext& context);

}  // namespace quorlo
