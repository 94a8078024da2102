#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quorlo {

enum class ExportFormat {
  json,  // a library document: everything, as another Quorlo reads it
  csv,   // a table of titles, abbreviations and plain texts
};

// Told by the ending of the file's name (.quorlo, .json; .csv). Absent for any other.
std::optional<ExportFormat> exportFormat(const std::filesystem::path& file);

// All but the trash.
struct WholeLibrary {};
// A folder of the user's own with its snippets; of a built-in one the snippets that it shows.
struct OneFolder {
  std::string uuid;
};
// These, in this order, without their folders.
struct ChosenSnippets {
  std::vector<std::string> uuids;
};
using ExportSelection = std::variant<WholeLibrary, OneFolder, ChosenSnippets>;

}  // namespace quorlo
