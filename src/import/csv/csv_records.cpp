#include "import/csv/csv_records.h"

#include "import/csv/csv_mapping.h"
#include "import/csv/csv_preview.h"
#include "import/csv/csv_scanner.h"
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

// Calls `visit(fields)`, which returns a Status, for each data row with anything in it.
template <class Visit>
Result<CsvRowCount> visitRows(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress,
                              Visit visit) {
  CsvScanner scanner(text, mapping.separator.value());
  CsvRowCount count;
  CsvFields fields;
  bool isHeader = mapping.hasHeader;
  for (std::size_t i = 0; scanner.next(fields); ++i) {
    count.columns = std::max(count.columns, fields.size());
    if (i % kRowsPerStep == 0) {
      if (progress.isCancelled()) return importWasCancelled();
      progress.setFraction(static_cast<double>(scanner.position()) / static_cast<double>(text.size() + 1));
    }
    if (std::exchange(isHeader, false) || std::ranges::all_of(fields, &std::u16string_view::empty)) continue;
    ++count.rows;
    if (const Status status = visit(fields); !status) return status.error();
  }
  if (!scanner.status()) return scanner.status().error();
  count.unclosedLine = scanner.unclosedLine();
  progress.setFraction(1);
  return count;
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

}  // namespace

Result<CsvMapping> completed(CsvMapping mapping, std::u16string_view text) {
  if (!mapping.separator) mapping.separator = likeliestSeparator(text);
  if (mapping.columns) return mapping;
  const auto preview = csvPreview(text, mapping);
  if (!preview) return preview.error();
  mapping.columns = preview.value().likelyColumns;
  return mapping;
}

Result<CsvRowCount> countRows(std::u16string_view text, const CsvMapping& mapping, WorkProgress& progress) {
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
  const auto count = visitRows(text, mapping, progress, add);
  if (!count) return count.error();
  records.count = count.value();
  if (const auto status = checkColumns(columns, records.count.columns); !status) return status.error();
  return records;
}

}  // namespace quorlo
