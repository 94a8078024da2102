#include "import/csv/csv_preview.h"

#include "import/csv/cswiftv.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>

namespace quorlo {
namespace {

constexpr CsvExtent kBeginning{.rows = 100, .fields = 1'000'000};

std::u16string shortened(std::u16string_view field) {
  if (field.size() <= CsvPreview::kLongestField) return std::u16string(field);
  auto length = CsvPreview::kLongestField;
  if (U16_IS_LEAD(field[length - 1])) --length;
  return std::u16string(field.substr(0, length)) + u"…";
}

}  // namespace

Result<CsvPreview> csvPreview(std::u16string_view text, const CsvMapping& mapping) {
  const auto firstRow = mapping.hasHeader ? CSwiftV::Header::firstRow : CSwiftV::Header::none;
  const auto parsed = CSwiftV::parse(text, mapping.separator.value(), firstRow, kBeginning);
  if (!parsed) return parsed.error();
  const auto& table = parsed.value();
  CsvPreview preview;
  preview.columnCount = table.columnCount();
  for (std::size_t i = 0; i < std::min(CsvPreview::kMostColumns, table.columnCount()); ++i) {
    const auto& header = table.headers()[i];
    preview.headers.push_back(header.empty() ? columnName(i) : shortened(header));
  }
  preview.likelyColumns = guessColumns(preview.headers);
  for (const auto row : table.rows()) {
    if (std::ranges::all_of(row, &std::u16string_view::empty)) continue;
    auto& shown = preview.rows.emplace_back();
    const auto fields = row.first(std::min(CsvPreview::kMostColumns, row.size()));
    std::ranges::transform(fields, std::back_inserter(shown), shortened);
  }
  return preview;
}

}  // namespace quorlo
