// Decodes a file and reads it as a table with each separator. The first byte of an input says what else.

#include "fuzz/fuzz_target.h"
#include "import/csv/csv_mapping.h"
#include "import/csv/csv_notices.h"
#include "import/csv/csv_preview.h"
#include "import/csv/csv_records.h"
#include "import/csv/cswiftv.h"
#include "import/csv/separators.h"
#include "import/csv/text_decoding.h"
#include "import/work_progress.h"
#include "text/utf.h"

#include <algorithm>
#include <string_view>

namespace quorlo {
namespace {

bool isPartOf(std::u16string_view field, std::u16string_view text) {
  return field.empty() ||
         (field.data() >= text.data() && field.data() + field.size() <= text.data() + text.size());
}

// Fields are parts of the text, none holds the separator or a line end outside quotation marks.
void checkTable(std::u16string_view text, char16_t separator, CSwiftV::Header header) {
  const auto table = CSwiftV::parse(text, separator, header).value();
  std::size_t lineFeeds = table.rows().size();
  for (const auto row : table.rows()) {
    for (const auto field : row) {
      require(isPartOf(field, text));
      lineFeeds += static_cast<std::size_t>(std::ranges::count(field, u'\n'));
      const bool isPlain = field.find(u'"') == field.npos;
      const bool mayHaveLostQuotes = field.data() > text.data() && field.data()[-1] == u'"';
      if (isPlain && !mayHaveLostQuotes) require(field.find(separator) == field.npos);
    }
  }
  require(lineFeeds <= 1 + static_cast<std::size_t>(std::ranges::count(text, u'\n')));
  require(table.keyedRows().size() == (header == CSwiftV::Header::none ? 0 : table.rows().size()));
}

void checkRecords(std::u16string_view text, const CsvMapping& mapping) {
  WorkProgress progress;
  const auto completion = completed(mapping, text);
  if (!completion) return require(!completion.error().message.empty());
  const auto& whole = completion.value();
  const auto records = csvRecords(text, whole, progress);
  const auto findings = examineRows(text, whole, progress).value();
  require(!records || records.value().snippets.size() + findings.withoutText.count == findings.rows);
  require(!findings.unclosedLine || std::ranges::count(text, u'"') % 2 == 1);
  const auto lines = 1 + static_cast<std::size_t>(std::ranges::count(text, u'\n'));
  for (const auto* each : {&findings.widerRows, &findings.doubledQuotes, &findings.keptQuotes,
                           &findings.joinedLines, &findings.withoutText}) {
    require(std::ranges::is_sorted(each->numbers) &&
            (each->numbers.empty() || each->numbers.back() <= lines));
  }
  require(!csvNotices("a.csv", TextEncoding::utf8, whole.columns.value(), findings).empty() ||
          findings.columns == 0);
  const auto preview = csvPreview(text, whole).value();
  require(preview.rows.size() <= findings.rows);
  require(preview.columnCount <= findings.columns);
}

}  // namespace
}  // namespace quorlo

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorlo;
  if (size == 0) return 0;
  const bool hasHeader = data[0] % 2 == 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  WorkProgress progress;
  const auto decoded = decodeText(bytes, progress);
  if (!decoded) {
    require(!decoded.error().message.empty());
    return 0;
  }
  const auto& text = decoded.value().text;
  require(isWellFormed(text) && text.find(u'\0') == text.npos);
  for (const auto separator : kSeparators) {
    checkTable(text, separator, hasHeader ? CSwiftV::Header::firstRow : CSwiftV::Header::none);
  }
  checkRecords(text, {{}, {}, {}});
  checkRecords(text, {{}, hasHeader, {}});
  checkRecords(text, {u',', hasHeader, CsvColumns{{}, 1, 0}});
  return 0;
}
