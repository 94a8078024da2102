#include "import/csv/csv_notices.h"

#include "import/csv/csv_findings.h"
#include "import/csv/cswiftv.h"
#include "import/csv/quoted_names.h"
#include "store/localized_format.h"
#include "text/quotation.h"
#include "text/utf.h"

#include <optional>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

std::u16string numberText(std::size_t number) {
  return toUtf16(std::to_string(number));
}

std::u16string listOf(const CsvLines& lines) {
  std::u16string list;
  for (const auto each : lines.numbers) list += (list.empty() ? u"" : u", ") + numberText(each);
  return lines.count > lines.numbers.size() ? list + u", …" : list;
}

std::u16string nameOf(std::size_t column, const CsvFindings& findings) {
  return column < findings.columnNames.size() ? quotation(findings.columnNames[column]) : columnName(column);
}

std::u16string namesOf(const std::vector<std::size_t>& columns, const CsvFindings& findings) {
  std::vector<std::u16string> names;
  for (const auto each : columns) names.push_back(nameOf(each, findings));
  return quotedNames(names);
}

class Notices {
 public:
  explicit Notices(const std::filesystem::path& file) : prefix_(toUtf16(file.filename().string()) + u": ") {}

  void add(const std::u16string& message) { notices_.push_back(prefix_ + message); }
  void addWhole(std::u16string message) { notices_.push_back(std::move(message)); }

  // `one` has a "%@" for its line, `many` one for the number and one for the lines.
  void add(const CsvLines& lines, std::u16string_view one, std::u16string_view many) {
    if (lines.count == 1) add(localizedFormat(one, listOf(lines)));
    if (lines.count > 1) add(localizedFormat(many, numberText(lines.count), listOf(lines)));
  }

  std::vector<std::u16string> take() { return std::move(notices_); }

 private:
  std::u16string prefix_;
  std::vector<std::u16string> notices_;
};

std::u16string reading(const CsvColumns& columns, const CsvFindings& findings) {
  auto sentences = findings.headerLine
                       ? localizedFormat(u"The row in line %@ is taken as the names of the columns.",
                                         numberText(*findings.headerLine))
                       : localized(u"No row is taken as names of the columns.");
  const auto add = [&](std::u16string_view sentence, std::optional<std::size_t> column) {
    if (column) sentences += u' ' + localizedFormat(sentence, nameOf(*column, findings));
  };
  add(u"Titles: “%@”.", columns.title);
  add(u"Abbreviations: “%@”.", columns.abbreviation);
  add(u"Texts: “%@”.", columns.text);
  if (!findings.leftOutColumns.empty()) {
    sentences += u' ' + localizedFormat(u"Left out: %@.", namesOf(findings.leftOutColumns, findings));
  }
  return sentences;
}

}  // namespace

std::vector<std::u16string> csvNotices(const std::filesystem::path& file, TextEncoding encoding,
                                       const CsvColumns& columns, const CsvFindings& findings) {
  Notices notices(file);
  if (findings.columns > 0) notices.add(reading(columns, findings));
  if (encoding == TextEncoding::windows1252) {
    notices.addWhole(localizedFormat(
        u"%@ is not in UTF-8 and was read as Windows-1252. Where letters are wrong, save it in UTF-8.",
        toUtf16(file.filename().string())));
  }
  notices.add(
      findings.widerRows,
      u"The row in line %@ has more fields than the table has columns; the rest of it is left out. Put "
      u"quotation marks around a text that holds the separator.",
      u"%@ rows have more fields than the table has columns; the rest of them is left out (lines %@). "
      u"Put quotation marks around texts that hold the separator.");
  notices.add(findings.withoutText, u"The row in line %@ has an abbreviation but no text and is left out.",
              u"%@ rows have an abbreviation but no text and are left out (lines %@).");
  notices.add(
      findings.joinedLines,
      u"A quotation mark within a text joins the row in line %@ to those behind it, up to the next "
      u"mark. See whether they belong together.",
      u"Quotation marks within texts join %@ rows to those behind them, up to the next marks (lines %@). "
      u"See whether they belong together.");
  notices.add(findings.doubledQuotes, u"The row in line %@ has doubled quotation marks, which stay doubled.",
              u"%@ rows have doubled quotation marks, which stay doubled (lines %@).");
  notices.add(findings.keptQuotes,
              u"The row in line %@ has blanks beside quotation marks, which stay in the text.",
              u"%@ rows have blanks beside quotation marks, which stay in the texts (lines %@).");
  if (findings.unclosedLine) {
    notices.addWhole(
        localizedFormat(u"%@: A quotation mark in the row that begins in line %@ is never closed. "
                        u"The row reaches to the end of the file.",
                        toUtf16(file.filename().string()), numberText(*findings.unclosedLine)));
  }
  return notices.take();
}

}  // namespace quorlo
