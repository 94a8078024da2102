#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace quorlo {

// In the order in which they are offered.
inline constexpr std::array<char16_t, 4> kSeparators{u',', u';', u'\t', u'|'};

// The one that the table names in a first line "sep=;", as spreadsheets write it. Else the comma, unless
// another one clearly splits better: into the same number of fields, two at least, in nearly all of the first
// rows, where the comma does not.
char16_t likeliestSeparator(std::u16string_view text);

// How evenly a separator divides the first rows of a table.
struct CsvFit {
  std::size_t columns = 0;  // the most frequent number of fields
  double share = 0;         // of the rows with that many

  bool isEven() const { return share > 0.9; }
};

CsvFit fitOfSeparator(std::u16string_view text, char16_t separator);

// Where the table begins: behind a line "sep=;" and blank rows.
std::size_t startOfTable(std::u16string_view text, char16_t separator);

}  // namespace quorlo
