#include "import/csv/csv_notices.h"

#include "import/csv/csv_records.h"
#include "store/localized_format.h"
#include "text/utf.h"

namespace quorlo {

std::vector<std::u16string> csvNotices(const std::filesystem::path& file, TextEncoding encoding,
                                       const CsvRowCount& count) {
  std::vector<std::u16string> notices;
  const auto name = toUtf16(file.filename().string());
  if (encoding == TextEncoding::windows1252) {
    notices.push_back(localizedFormat(
        u"%@ is not in UTF-8 and was read as Windows-1252. Where letters are wrong, save it in UTF-8.",
        name));
  }
  if (count.unclosedLine) {
    notices.push_back(
        localizedFormat(u"%@: A quotation mark in the row that begins in line %@ is never closed. "
                        u"The row reaches to the end of the file.",
                        name, toUtf16(std::to_string(*count.unclosedLine))));
  }
  return notices;
}

}  // namespace quorlo
