#include "import/csv/separators.h"

#include "import/csv/csv_scanner.h"
#include "text/case_folding.h"

#include <algorithm>
#include <map>

namespace quorlo {
namespace {

constexpr std::size_t kSampleSize = std::size_t{1} << 18;
constexpr std::size_t kSampleRows = 100;
constexpr std::u16string_view kBlanks = u" \t\u00A0";

struct SeparatorLine {
  std::optional<char16_t> separator;
  std::size_t end = 0;
};

// "sep=;", perhaps in quotation marks.
SeparatorLine separatorLine(std::u16string_view text) {
  constexpr std::u16string_view kKey = u"sep=";
  const auto lineEnd = std::min(text.find(u'\n'), text.size());
  auto line = text.substr(0, std::min(text.find_last_not_of(u"\r\n", lineEnd) + 1, lineEnd));
  if (line.size() > 2 && line.front() == u'"' && line.back() == u'"') line = line.substr(1, line.size() - 2);
  const bool isKey = line.size() == kKey.size() + 1 && foldCase(line.substr(0, kKey.size())) == kKey;
  if (!isKey || line.back() == u'"') return {};
  return {line.back(), std::min(lineEnd + 1, text.size())};
}

bool isBlank(const CsvFields& row) {
  return std::ranges::all_of(row, [](auto field) { return field.find_first_not_of(kBlanks) == field.npos; });
}

bool splitsWell(const CsvFit& fit) {
  return fit.columns > 1 && fit.isEven();
}

}  // namespace

CsvFit fitOfSeparator(std::u16string_view text, char16_t separator) {
  const auto sample = text.substr(0, kSampleSize);
  CsvScanner scanner(sample, separator, separatorLine(sample).end);
  CsvFields row;
  std::map<std::size_t, std::size_t> frequencies;
  std::size_t rows = 0;
  while (rows < kSampleRows && scanner.next(row)) {
    const bool isCut = scanner.position() == sample.size() && sample.size() < text.size();
    if (isBlank(row) || (isCut && rows > 0)) continue;
    ++frequencies[row.size()];
    ++rows;
  }
  if (rows == 0) return {};
  const auto usual = std::ranges::max_element(frequencies, {}, [](const auto& each) { return each.second; });
  return {usual->first, static_cast<double>(usual->second) / static_cast<double>(rows)};
}

char16_t likeliestSeparator(std::u16string_view text) {
  if (const auto named = separatorLine(text).separator) return *named;
  auto best = kSeparators.front();
  if (splitsWell(fitOfSeparator(text, best))) return best;
  CsvFit bestFit;
  for (const auto separator : kSeparators) {
    const auto each = fitOfSeparator(text, separator);
    if (!splitsWell(each) || each.columns <= bestFit.columns) continue;
    best = separator;
    bestFit = each;
  }
  return best;
}

std::size_t startOfTable(std::u16string_view text, char16_t separator) {
  CsvScanner scanner(text, separator, separatorLine(text).end);
  CsvFields row;
  auto start = scanner.position();
  while (start < text.size() && scanner.next(row) && isBlank(row)) start = scanner.position();
  return start;
}

}  // namespace quorlo
