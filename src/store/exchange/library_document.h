#pragma once

#include "base/result.h"
#include "store/lookup/abbreviation_rules.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class ManagedObject;
class ManagedObjectContext;
class QLCategory;
class QLSnippet;

// What reading a document did.
struct LibraryReadReport {
  std::vector<std::shared_ptr<QLSnippet>> addedSnippets;
  std::vector<std::shared_ptr<QLCategory>> addedFolders;
  std::vector<std::shared_ptr<ManagedObject>> added;  // all of it, in the order in which it came
  std::size_t presentSnippets = 0;                    // in the library already, left as they were
  // In the library's trash, where they are left; with their folder of the document, null for none.
  struct Trashed {
    std::shared_ptr<QLSnippet> snippet;
    QLCategory* folder;
  };
  std::vector<Trashed> trashed;
  // A snippet that was kept without its abbreviation.
  struct Warning {
    std::shared_ptr<QLSnippet> snippet;
    std::u16string abbreviation;
    std::optional<AbbreviationFault> fault;
    std::shared_ptr<QLSnippet> holder;  // of the abbreviation, where there is no fault
  };
  std::vector<Warning> warnings;
};

// A library in its JSON exchange form, described in docs/formats.md. Reading adds to what is in the
// context; what is there already, by uuid, is left alone, so reading a document twice adds nothing. Any
// fault in a document leaves the context as it was, and the error says where it is and what to do.
// The context is not saved.
//
// Snippets in no folder of the document go to All Snippets, if the library has that folder by now.
// With a destination, a folder of the user's own, all snippets go there and no folder is added.
Result<LibraryReadReport> readLibraryFile(const std::filesystem::path& file, ManagedObjectContext& context,
                                          QLCategory* destination = nullptr);

// For callers that show no report. The log gets no text of the user's but titles that the document gives.
void logWarnings(const LibraryReadReport& report);

// `name` stands for the document in messages.
Result<LibraryReadReport> readLibrary(std::string_view json, std::string_view name,
                                      ManagedObjectContext& context, QLCategory* destination = nullptr);

}  // namespace quorlo
