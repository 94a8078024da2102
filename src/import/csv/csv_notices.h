#pragma once

#include "import/csv/csv_mapping.h"
#include "import/csv/text_decoding.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

struct CsvFindings;

// What the user should know of how a table is read; whole sentences with the file's name. Which column is
// taken for what and whether the first row is one of names comes first, then what is left out, refused or
// kept otherwise than other programs would, with the lines.
std::vector<std::u16string> csvNotices(const std::filesystem::path& file, TextEncoding encoding,
                                       const CsvColumns& columns, const CsvFindings& findings);

}  // namespace quorlo
