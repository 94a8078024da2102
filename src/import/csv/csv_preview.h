#pragma once

#include "base/result.h"
#include "import/csv/csv_mapping.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// The beginning of a table, for showing it: bounded whatever the file holds. A value of its own.
struct CsvPreview {
  static constexpr std::size_t kMostColumns = 1'000;
  static constexpr std::size_t kLongestField = 200;

  std::vector<std::u16string> headers;            // of the columns that are offered
  std::vector<std::vector<std::u16string>> rows;  // data rows that are not empty; long fields are cut
  std::size_t columnCount = 0;                    // with those that are not offered
  bool hasHeader = false;                         // as the mapping has it, or as is likely
  CsvGuess guess;
};

// `mapping` has its separator; the columns are guessed whatever it has. The error is part of a sentence.
Result<CsvPreview> csvPreview(std::u16string_view text, const CsvMapping& mapping);

}  // namespace quorlo
