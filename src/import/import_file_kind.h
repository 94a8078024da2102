#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

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

// What the first bytes of a file say of it, for files whose names say nothing or something else.
bool looksLikePropertyList(std::string_view content);
bool looksLikeJson(std::string_view content);

// "Quorlo imports …", a sentence for users whose file is of no such kind.
std::u16string importableKinds();

}  // namespace quorlo
