#pragma once

#include "base/result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

// What is there more than once in a library although it should be unique to the user, in UTF-8 and in order.
struct LibraryDuplicates {
  std::vector<std::string> abbreviations;  // of live snippets outside shared folders
  std::vector<std::string> folderTitles;   // of the user's own folders
};

// None where there is no library, or one of another version.
Result<LibraryDuplicates> findDuplicates(const std::filesystem::path& directory);

}  // namespace quorlo
