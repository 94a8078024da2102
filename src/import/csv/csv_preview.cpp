#include "import/csv/csv_preview.h"

#include "import/csv/cswiftv.h"
#include "import/csv/separators.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>

namespace quorlo {
namespace {

constexpr std::size_t kRows = 100;
constexpr std::size_t kFields = 1'000'000;

std::u16string shortened(std::u16string_view field) {
  if (field.size() <= CsvPreview::kLongestField) return std::u16string(field);
  auto length = CsvPreview::kLongestField;
  if (U16_IS_LEAD(field[length - 1])) --length;
  return std::u16string(field.substr(0, length)) + u"…";
}

bool isFilled(const std::vector<std::vector<std::u16string>>& rows, std::size_t column) {
  return std::ranges::any_of(
      rows, [column](const auto& row) { return column < row.size() && !row[column].empty(); });
}

// Columns with neither a name nor anything in them, such as those behind separators at the ends of rows, are
// not there.
std::vector<std::u16string> namesOfColumns(const std::vector<std::u16string>& names,
                                           const CsvPreview& preview) {
  auto known = names;
  known.resize(preview.headers.size());
  for (std::size_t i = 0; i < known.size(); ++i) {
    if (known[i].empty() && isFilled(preview.rows, i)) known[i] = columnName(i);
  }
  while (!known.empty() && known.back().empty()) known.pop_back();
  return known;
}

CsvGuess guess(const CsvPreview& preview, const std::vector<std::u16string>& firstRow, const CsvFit& fit,
               bool isHeaderGiven) {
  if (!preview.hasHeader) {
    auto guess = guessColumnsByPosition(fit.columns);
    if (!isHeaderGiven && preview.columnCount > 1 && !fit.isEven()) guess.doubt = CsvDoubt::uneven;
    return guess;
  }
  auto guess = guessColumns(namesOfColumns(firstRow, preview));
  if (!isHeaderGiven && !isCertainHeader(firstRow)) guess.doubt = CsvDoubt::header;
  return guess;
}

}  // namespace

Result<CsvPreview> csvPreview(std::u16string_view text, const CsvMapping& mapping) {
  const auto separator = mapping.separator.value();
  const CsvExtent beginning{kRows, kFields, startOfTable(text, separator)};
  auto parsed = CSwiftV::parse(text, separator, CSwiftV::Header::firstRow, beginning);
  if (!parsed) return parsed.error();
  const auto firstRow = parsed.value().headers();
  CsvPreview preview;
  preview.hasHeader = mapping.hasHeader.value_or(isHeader(firstRow));
  if (!preview.hasHeader) {
    parsed = CSwiftV::parse(text, separator, CSwiftV::Header::none, beginning);
    if (!parsed) return parsed.error();
  }
  const auto& table = parsed.value();
  preview.columnCount = table.columnCount();
  for (std::size_t i = 0; i < std::min(CsvPreview::kMostColumns, table.columnCount()); ++i) {
    const auto& header = table.headers()[i];
    preview.headers.push_back(header.empty() ? columnName(i) : shortened(header));
  }
  for (const auto row : table.rows()) {
    if (std::ranges::all_of(row, &std::u16string_view::empty)) continue;
    auto& shown = preview.rows.emplace_back();
    const auto fields = row.first(std::min(CsvPreview::kMostColumns, row.size()));
    std::ranges::transform(fields, std::back_inserter(shown), shortened);
  }
  preview.guess = guess(preview, firstRow, fitOfSeparator(text, separator), mapping.hasHeader.has_value());
  return preview;
}

}  // namespace quorlo
