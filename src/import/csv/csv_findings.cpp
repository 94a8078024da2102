#include "import/csv/csv_findings.h"

#include "import/csv/cswiftv.h"

#include <algorithm>
#include <array>

namespace quorlo {
namespace {

constexpr std::size_t kMostNamedColumns = 1'000;
constexpr std::u16string_view kBlanks = u" \t\u00A0";

void note(CsvLines& lines, CsvScanner& scanner) {
  if (++lines.count <= CsvLines::kMostNumbers) lines.numbers.push_back(scanner.line());
}

std::u16string_view valueOf(const CsvFields& row, std::optional<std::size_t> column) {
  return column && *column < row.size() ? row[*column] : std::u16string_view();
}

// The mark before it is its own: a separator is none.
bool hasLostQuotes(std::u16string_view field, std::u16string_view text) {
  return !field.empty() && field.data() > text.data() && field.data()[-1] == u'"';
}

bool keepsQuotesForBlanks(std::u16string_view field) {
  const auto start = field.find_first_not_of(kBlanks);
  const auto end = field.find_last_not_of(kBlanks);
  const bool hasBlanks = start != field.npos && (start > 0 || end + 1 < field.size());
  return hasBlanks && start < end && field[start] == u'"' && field[end] == u'"';
}

bool isBlank(std::u16string_view field) {
  return field.find_first_not_of(kBlanks) == field.npos;
}

}  // namespace

CsvExamination::CsvExamination(std::u16string_view text, const CsvColumns& columns, std::size_t usualColumns)
    : text_(text), columns_(columns) {
  for (std::size_t i = 0; i < usualColumns; ++i) findings_.columnNames.push_back(columnName(i));
  isFilled_.resize(usualColumns);
}

void CsvExamination::takeHeader(const CsvFields& row, CsvScanner& scanner) {
  findings_.headerLine = scanner.line();
  findings_.columns = row.size();
  isFilled_.assign(row.size(), false);
  findings_.columnNames.clear();
  for (std::size_t i = 0; i < std::min(row.size(), kMostNamedColumns); ++i) {
    auto name = trimmedHeader(row[i]);
    findings_.columnNames.push_back(name.empty() ? columnName(i) : std::move(name));
  }
}

bool CsvExamination::take(const CsvFields& row, CsvScanner& scanner) {
  auto& findings = findings_;
  findings.columns = std::max(findings.columns, row.size());
  if (std::ranges::all_of(row, &std::u16string_view::empty)) return false;
  ++findings.rows;
  for (std::size_t i = 0; i < std::min(row.size(), isFilled_.size()); ++i) {
    if (!row[i].empty()) isFilled_[i] = true;
  }
  bool isWider = false;
  for (auto i = isFilled_.size(); i < row.size(); ++i) isWider |= !row[i].empty() && !columns_.has(i);
  if (isWider) note(findings.widerRows, scanner);
  lookAtQuotes(row, scanner);
  const bool isTaken = !valueOf(row, columns_.text).empty() || isBlank(valueOf(row, columns_.abbreviation));
  if (!isTaken) note(findings.withoutText, scanner);
  return isTaken;
}

void CsvExamination::lookAtQuotes(const CsvFields& row, CsvScanner& scanner) {
  bool isDoubled = false;
  bool isKept = false;
  bool isJoined = false;
  for (const auto column : {columns_.title, columns_.abbreviation, columns_.text}) {
    const auto field = valueOf(row, column);
    const auto quote = field.find(u'"');
    if (quote == field.npos) continue;
    isDoubled |= field.find(u"\"\"", quote) != field.npos;
    isKept |= keepsQuotesForBlanks(field);
    isJoined |= !hasLostQuotes(field, text_) && field.find(u'\n') != field.npos;
  }
  if (isDoubled) note(findings_.doubledQuotes, scanner);
  if (isKept) note(findings_.keptQuotes, scanner);
  if (isJoined) note(findings_.joinedLines, scanner);
}

CsvFindings CsvExamination::finish(CsvScanner& scanner) {
  for (std::size_t i = 0; i < std::min(isFilled_.size(), findings_.columnNames.size()); ++i) {
    if (isFilled_[i] && !columns_.has(i)) findings_.leftOutColumns.push_back(i);
  }
  findings_.unclosedLine = scanner.unclosedLine();
  return std::move(findings_);
}

}  // namespace quorlo
