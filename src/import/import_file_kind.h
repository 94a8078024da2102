#pragma once

#include <filesystem>
#include <optional>

namespace quorlo {

// The kinds of files that snippets are imported from, told by the ending of the file's name.
enum class ImportFileKind {
  csv,           // .csv, .tsv, .txt: a table, whose columns the user names first
  library,       // .quorlo, .json: this program's own export
  textExpander,  // .textexpander, .textexpanderbackup
  typeIt4Me,     // .typeit4me
  clipping,      // .textclipping
};

// Absent for any other file.
std::optional<ImportFileKind> importFileKind(const std::filesystem::path& file);

}  // namespace quorlo
