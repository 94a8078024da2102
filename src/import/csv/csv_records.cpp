#include "import/csv/csv_records.h"

#include "import/csv/csv_mapping.h"
#include "import/csv/csv_preview.h"
#include "import/csv/csv_scanner.h"
#include "import/csv/quoted_names.h"
#include "import/csv/separators.h"
#include "import/file_bytes.h"
#include "import/work_progress.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <algorithm>
#include <string>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kMostRecords = 2'000'000;
constexpr std::size_t kRowsPerStep = 1'000;

// Calls `visit(fields)`, which returns a Status, for each data row that is a snippet.
template <class Visit>
Result<CsvFindings> visitRows(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress,
                              Visit visit) {
  const auto separator = mapping.separator.value();
  bool isHeader = mapping.hasHeader.value();
  CsvScanner scanner(text, separator, startOfTable(text, separator));
  CsvExamination examination(text, mapping.columns.value(),
                             isHeader ? 0 : fitOfSeparator(text, separator).columns);
  CsvFields fields;
  for (std::size_t i = 0; scanner.next(fields); ++i) {
    if (i % kRowsPerStep == 0) {
      if (progress.isCancelled()) return importWasCancelled();
      progress.setFraction(static_cast<double>(scanner.position()) / static_cast<double>(text.size() + 1));
    }
    if (std::exchange(isHeader, false)) {
      examination.takeHeader(fields, scanner);
    } else if (examination.take(fields, scanner)) {
      if (const Status status = visit(fields); !status) return status.error();
    }
  }
  if (!scanner.status()) return scanner.status().error();
  progress.setFraction(1);
  return examination.finish(scanner);
}

std::u16string value(const CsvFields& fields, std::optional<std::size_t> column) {
  return column && *column < fields.size() ? std::u16string(fields[*column]) : std::u16string();
}

Status checkColumns(const CsvColumns& columns, std::size_t count) {
  for (const auto column : {columns.title, columns.abbreviation, columns.text}) {
    if (!column || *column < count || count == 0) continue;
    return Error{
        toUtf8(localizedFormat(u"there is no column %d; the table has %d",
                               toUtf16(std::to_string(*column + 1)), toUtf16(std::to_string(count))))};
  }
  return {};
}

// Part of a sentence, with what to do on the command line.
Error refusal(CsvDoubt doubt, const CsvPreview& preview) {
  const auto& columns = preview.hasHeader || preview.rows.empty() ? preview.headers : preview.rows.front();
  const auto names = quotedNames(columns);
  switch (doubt) {
    case CsvDoubt::header:
      return {
          toUtf8(localizedFormat(u"its first row (%@) may name the columns or be a snippet; say which with "
                                 u"--header or --no-header, and which column is which with --title, "
                                 u"--abbreviation and --text",
                                 names))};
    case CsvDoubt::uneven:
      return {
          toUtf8(localizedFormat(u"its rows have different numbers of fields, and its first row (%@) names "
                                 u"no columns; say what it is with --no-header, --separator or --text",
                                 names))};
    default:
      return {
          toUtf8(localizedFormat(u"its columns are not all known by their names (%@); say which is which "
                                 u"with --title, --abbreviation and --text, by number or name",
                                 names))};
  }
}

}  // namespace

Result<CsvMapping> completed(CsvMapping mapping, std::u16string_view text) {
  if (!mapping.separator) mapping.separator = likeliestSeparator(text);
  if (mapping.hasHeader && mapping.columns) return mapping;
  const auto preview = csvPreview(text, mapping);
  if (!preview) return preview.error();
  const auto& guess = preview.value().guess;
  if (!mapping.columns && guess.doubt != CsvDoubt::none) return refusal(guess.doubt, preview.value());
  mapping.hasHeader = preview.value().hasHeader;
  if (!mapping.columns) mapping.columns = guess.columns;
  return mapping;
}

Result<CsvFindings> examineRows(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress) {
  return visitRows(text, mapping, progress, [](const CsvFields&) { return Status(); });
}

Result<CsvRecords> csvRecords(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress) {
  const auto& columns = mapping.columns.value();
  CsvRecords records;
  const auto add = [&](const CsvFields& fields) -> Status {
    if (records.snippets.size() == kMostRecords) {
      return Error{toUtf8(localized(u"it has more than two million rows; divide it"))};
    }
    ImportedSnippet snippet;
    snippet.title = value(fields, columns.title);
    snippet.abbreviation = value(fields, columns.abbreviation);
    snippet.text = AttributedString(value(fields, columns.text));
    records.snippets.push_back(std::move(snippet));
    return {};
  };
  auto findings = visitRows(text, mapping, progress, add);
  if (!findings) return findings.error();
  records.findings = std::move(findings).value();
  if (const auto status = checkColumns(columns, records.findings.columns); !status) return status.error();
  return records;
}

}  // namespace quorlo
