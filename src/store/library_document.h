#pragma once

#include "base/result.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class ManagedObjectContext;

// What reading a document did.
struct LibraryReadReport {
  std::size_t addedSnippets = 0;
  std::size_t addedFolders = 0;
  std::size_t presentSnippets = 0;  // in the library already, left as they were
  // One for each snippet that was kept without its abbreviation, with abbreviation and titles; logged too.
  std::vector<std::string> warnings;
};

// A library in its JSON exchange form, described in docs/formats.md. Reading adds to what is in the
// context; what is there already, by uuid, is left alone, so reading a document twice adds nothing. Any
// fault in a document leaves the context as it was, and the error says where it is and what to do.
// The context is not saved.
Result<LibraryReadReport> readLibraryFile(const std::filesystem::path& file, ManagedObjectContext& context);

// `name` stands for the document in messages.
Result<LibraryReadReport> readLibrary(std::string_view json, std::string_view name,
                                      ManagedObjectContext& context);

// All but the trash, the built-in folders and the statistics; reads back as the same library.
std::string writeLibrary(const ManagedObjectContext& context);

}  // namespace quorlo
