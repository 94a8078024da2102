#include "import/csv/csv_file.h"

#include "import/csv/csv_mapping.h"
#include "import/csv/csv_notices.h"
#include "import/csv/csv_records.h"
#include "import/file_bytes.h"
#include "import/work_progress.h"
#include "text/utf.h"

#include <utility>

namespace quorlo {
namespace {

Error inFile(const std::filesystem::path& file, const Error& reason, const WorkProgress& progress) {
  return progress.isCancelled() ? importWasCancelled() : cannotRead(file, toUtf16(reason.message));
}

}  // namespace

Result<DecodedText> readCsvText(const std::filesystem::path& file, WorkProgress& progress) {
  WorkProgress reading(progress, 0, 0.5);
  const auto bytes = readFileBytes(file, reading);
  if (!bytes) return bytes.error();
  WorkProgress decoding(progress, 0.5, 1);
  auto decoded = decodeText(bytes.value(), decoding);
  if (!decoded) return inFile(file, decoded.error(), progress);
  return decoded;
}

Result<ImportData> readCsvRecords(const std::filesystem::path& file, const DecodedText& decoded,
                                  const CsvMapping& mapping, WorkProgress& progress) {
  auto read = csvRecords(decoded.text, mapping, progress);
  if (!read) return inFile(file, read.error(), progress);
  auto records = std::move(read).value();
  ImportData data;
  data.snippets = std::move(records.snippets);
  for (auto& message : csvNotices(file, decoded.encoding, mapping.columns.value(), records.findings)) {
    data.notices.push_back({{}, std::move(message)});
  }
  return data;
}

Result<ImportData> readCsvFile(const std::filesystem::path& file, const CsvMapping& mapping,
                               WorkProgress& progress) {
  WorkProgress reading(progress, 0, 0.5);
  const auto decoded = readCsvText(file, reading);
  if (!decoded) return decoded.error();
  const auto whole = completed(mapping, decoded.value().text);
  if (!whole) return inFile(file, whole.error(), progress);
  WorkProgress making(progress, 0.5, 1);
  return readCsvRecords(file, decoded.value(), whole.value(), making);
}

}  // namespace quorlo
