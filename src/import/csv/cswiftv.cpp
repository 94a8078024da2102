#include "import/csv/cswiftv.h"

#include "import/csv/csv_scanner.h"
#include "store/localized_format.h"

#include <algorithm>

namespace quorlo {
std::u16string trimmedHeader(std::u16string_view field) {
  constexpr std::u16string_view kBlanks = u" \t";
  const auto start = std::min(field.find_first_not_of(kBlanks), field.size());
  const auto end = field.find_last_not_of(kBlanks) + 1;
  return std::u16string(field.substr(start, end > start ? end - start : 0));
}

std::u16string columnName(std::size_t index) {
  return localizedFormat(u"Column %d", static_cast<std::int64_t>(index + 1));
}

Result<CSwiftV> CSwiftV::parse(std::u16string_view text, char16_t separator, Header header,
                               CsvExtent extent) {
  CSwiftV table;
  table.header_ = header;
  CsvScanner scanner(text, separator, extent.start);
  CsvFields row;
  if (header == Header::firstRow && scanner.next(row)) {
    std::ranges::transform(row, std::back_inserter(table.headers_), trimmedHeader);
  }

  std::size_t widest = 0;
  std::vector<std::size_t> lengths;
  while (lengths.size() < extent.rows && table.fields_.size() < extent.fields && scanner.next(row)) {
    table.fields_.insert(table.fields_.end(), row.begin(), row.end());
    lengths.push_back(row.size());
    widest = std::max(widest, row.size());
  }
  if (!scanner.status()) return scanner.status().error();

  table.rows_.reserve(lengths.size());
  const auto* field = table.fields_.data();
  for (const auto length : lengths) {
    table.rows_.emplace_back(field, length);
    field += length;
  }
  for (std::size_t i = 0; header == Header::none && i < widest; ++i) {
    table.headers_.push_back(columnName(i));
  }
  return table;
}

std::vector<std::map<std::u16string_view, std::u16string_view>> CSwiftV::keyedRows() const {
  if (header_ == Header::none) return {};
  std::vector<std::map<std::u16string_view, std::u16string_view>> keyed(rows_.size());
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    for (std::size_t column = 0; column < std::min(rows_[i].size(), headers_.size()); ++column) {
      keyed[i].insert_or_assign(headers_[column], rows_[i][column]);
    }
  }
  return keyed;
}

}  // namespace quorlo
