#include "import/csv/separators.h"

#include "import/csv/csv_scanner.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace quorlo {
namespace {

constexpr std::size_t kSampleSize = std::size_t{1} << 18;
constexpr std::size_t kSampleRows = 100;

struct Fit {
  std::size_t columns = 0;  // the most frequent number of fields
  double share = 0;         // of the rows with that many
};

Fit fit(std::u16string_view text, char16_t separator) {
  const auto sample = text.substr(0, kSampleSize);
  CsvScanner scanner(sample, separator);
  CsvFields row;
  std::map<std::size_t, std::size_t> frequencies;
  std::size_t rows = 0;
  while (rows < kSampleRows && scanner.next(row)) {
    const bool isCut = scanner.position() == sample.size() && sample.size() < text.size();
    if (row.empty() || (isCut && rows > 0)) continue;
    ++frequencies[row.size()];
    ++rows;
  }
  if (rows == 0) return {};
  const auto usual = std::ranges::max_element(frequencies, {}, [](const auto& each) { return each.second; });
  return {usual->first, static_cast<double>(usual->second) / static_cast<double>(rows)};
}

bool splitsWell(const Fit& fit) {
  return fit.columns > 1 && fit.share > 0.9;
}

}  // namespace

char16_t likeliestSeparator(std::u16string_view text) {
  auto best = kSeparators.front();
  if (splitsWell(fit(text, best))) return best;
  Fit bestFit;
  for (const auto separator : kSeparators) {
    const auto each = fit(text, separator);
    if (!splitsWell(each) || each.columns <= bestFit.columns) continue;
    best = separator;
    bestFit = each;
  }
  return best;
}

}  // namespace quorlo
