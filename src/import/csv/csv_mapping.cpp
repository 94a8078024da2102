#include "import/csv/csv_mapping.h"

#include "import/csv/column_names.h"

#include <algorithm>
#include <string_view>

namespace quorlo {
namespace {

constexpr std::size_t kLongestName = 40;
constexpr std::ptrdiff_t kMostBlanksInName = 4;

using RankOfName = std::size_t (ColumnName::*)(ColumnRole) const;

// Gives each role that has none the free column that tells most of it.
void assign(CsvColumns& columns, const std::vector<ColumnName>& names, RankOfName rank) {
  const auto find = [&](std::optional<std::size_t>& column, ColumnRole role) {
    if (column) return;
    auto best = ColumnName::kUnknown;
    for (std::size_t i = 0; i < names.size(); ++i) {
      const auto each = columns.has(i) ? ColumnName::kUnknown : (names[i].*rank)(role);
      if (each >= best) continue;
      best = each;
      column = i;
    }
  };
  find(columns.abbreviation, ColumnRole::abbreviation);
  find(columns.text, ColumnRole::text);
  find(columns.title, ColumnRole::title);
}

CsvColumns columnsByName(const std::vector<std::u16string>& names) {
  const std::vector<ColumnName> plain(names.begin(), names.end());
  CsvColumns columns;
  assign(columns, plain, &ColumnName::rank);
  assign(columns, plain, &ColumnName::rankOfWord);
  return columns;
}

std::vector<std::size_t> freeColumns(const CsvColumns& columns, const std::vector<std::u16string>& names) {
  std::vector<std::size_t> free;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!names[i].empty() && !columns.has(i)) free.push_back(i);
  }
  return free;
}

bool mayBeName(std::u16string_view field) {
  return field.size() <= kLongestName && field.find_first_of(u"\r\n") == field.npos &&
         std::ranges::count(field, u' ') <= kMostBlanksInName;
}

}  // namespace

CsvGuess guessColumns(const std::vector<std::u16string>& names) {
  auto columns = columnsByName(names);
  if (columns == CsvColumns{}) return guessColumnsByPosition(names.size());
  const auto free = freeColumns(columns, names);
  if (columns.text) {
    const bool isClear = columns.abbreviation.has_value() || free.empty();
    return {columns, isClear ? CsvDoubt::none : CsvDoubt::columns};
  }
  if (!free.empty()) columns.text = free.back();
  return {columns, free.size() == 1 ? CsvDoubt::none : CsvDoubt::columns};
}

CsvGuess guessColumnsByPosition(std::size_t count) {
  if (count == 0) return {};
  if (count == 1) return {{.title = {}, .abbreviation = {}, .text = 0}};
  if (count == 2) return {{.title = {}, .abbreviation = 0, .text = 1}};
  return {{.title = 0, .abbreviation = 1, .text = 2}, count == 3 ? CsvDoubt::none : CsvDoubt::tooMany};
}

bool isHeader(const std::vector<std::u16string>& firstRow) {
  return std::ranges::all_of(firstRow, mayBeName) && columnsByName(firstRow) != CsvColumns{};
}

bool isCertainHeader(const std::vector<std::u16string>& firstRow) {
  const auto columns = columnsByName(firstRow);
  return columns.abbreviation || (columns.title && columns.text) || freeColumns(columns, firstRow).empty();
}

}  // namespace quorlo
