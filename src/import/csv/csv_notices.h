#pragma once

#include "import/csv/text_decoding.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

struct CsvRowCount;

// What the user should know of how a table was read; whole sentences with the file's name.
std::vector<std::u16string> csvNotices(const std::filesystem::path& file, TextEncoding encoding,
                                       const CsvRowCount& count);

}  // namespace quorlo
