#include "import/file_import.h"

#include "base/localized.h"
#include "import/csv/csv_file.h"
#include "import/file_bytes.h"
#include "import/formats/clipping.h"
#include "import/formats/text_expander.h"
#include "import/formats/type_it_4_me.h"
#include "import/import_file_kind.h"
#include "import/import_transaction.h"
#include "import/work_progress.h"
#include "store/exchange/json_document.h"
#include "text/utf.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

constexpr double kReadEnds = 0.4;  // of the work on one file
constexpr std::size_t kTellingBytes = 1024;
constexpr double kSaveBegins = 0.5;  // of all work

Error ofNoKind(const std::filesystem::path& file) {
  return {file.string() + ": " +
          toUtf8(localized(u"Snippets cannot be imported from this file.") + u' ' + importableKinds())};
}

// It says what it is by its keys alone: each reader refuses what it does not know, or finds nothing in it.
Result<ImportData> readAnyPropertyList(const std::filesystem::path& file, std::string_view content) {
  for (const auto read : {readTextExpander, readClipping, readTypeIt4Me}) {
    auto data = read(content, file.filename().string());
    if (data && !data.value().snippets.empty()) return data;
  }
  return ofNoKind(file);
}

// A file that is a table by its name alone.
bool holdsPropertyList(const std::filesystem::path& file) {
  std::error_code failure;
  if (!std::filesystem::is_regular_file(file, failure)) return false;
  std::string start(kTellingBytes, '\0');
  std::ifstream stream(file, std::ios::binary);
  stream.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<std::size_t>(stream.gcount()));
  return looksLikePropertyList(start);
}

// A document without any of these keys is another program's, unless it is empty.
bool mayBeLibrary(std::string_view content) {
  constexpr std::string_view kKeys[]{"\"text\"", "\"snippets\"", "\"folders\"", "\"excludedApplications\""};
  if (std::ranges::any_of(kKeys, [content](auto key) { return content.find(key) != content.npos; }))
    return true;
  constexpr std::string_view kEmpty[]{"", "{}", "[]", "{\"version\":1}"};
  std::string start(content.substr(0, kTellingBytes));
  std::erase_if(start, [](char each) {
    return std::string_view(" \t\r\n\xEF\xBB\xBF").find(each) != std::string_view::npos;
  });
  return content.size() <= kTellingBytes && std::ranges::find(kEmpty, start) != std::end(kEmpty);
}

Status takeLibrary(const std::filesystem::path& file, std::string_view content,
                   ImportTransaction& transaction) {
  if (!isUtf16(content) && !mayBeLibrary(content)) return ofNoKind(file);
  return transaction.addLibrary(content, file);
}

// A backup is on the Mac a folder, which other systems see as one.
std::optional<Error> faultOfFolder(const std::filesystem::path& file) {
  std::error_code ignored;
  const bool isBackup =
      importFileKind(file) == ImportFileKind::textExpander && std::filesystem::is_directory(file, ignored);
  if (!isBackup) return std::nullopt;
  return cannotRead(file,
                    localized(u"it is a folder; import the files in it whose names begin with “group_”"));
}

Result<ImportData> readOther(std::optional<ImportFileKind> kind, const std::filesystem::path& file,
                             std::string_view content) {
  const auto name = file.filename().string();
  const auto named = [&file](const Result<ImportData>& data) {
    return data ? data : Error{file.string() + ": " + data.error().message};
  };
  if (kind == ImportFileKind::textExpander) return named(readTextExpander(content, name));
  if (kind == ImportFileKind::typeIt4Me) return named(readTypeIt4Me(content, name));
  if (kind == ImportFileKind::clipping) return named(readClipping(content, name));
  if (looksLikePropertyList(content)) return readAnyPropertyList(file, content);
  return ofNoKind(file);
}

Status take(const std::filesystem::path& file, const std::optional<CsvMapping>& mapping,
            ImportTransaction& transaction, WorkProgress& progress) {
  WorkProgress reading(progress, 0, kReadEnds);
  WorkProgress adding(progress, kReadEnds, 1);
  const auto add = [&](const Result<ImportData>& data) {
    return data ? transaction.add(data.value(), adding) : Status(data.error());
  };
  if (isTable(file)) {
    return add(readCsvFile(file, mapping.value_or(CsvMapping()), reading));
  }
  const auto kind = importFileKind(file);
  if (auto fault = faultOfFolder(file)) return *fault;
  const auto content = readFileBytes(file, reading);
  if (!content) return content.error();
  const bool isLibrary = kind ? kind == ImportFileKind::library : looksLikeJson(content.value());
  if (isLibrary && !looksLikePropertyList(content.value()))
    return takeLibrary(file, content.value(), transaction);
  return add(readOther(kind, file, content.value()));
}

}  // namespace

bool isTable(const std::filesystem::path& file) {
  return importFileKind(file) == ImportFileKind::csv && !holdsPropertyList(file);
}

Result<ImportReport> importFile(const std::filesystem::path& file, const std::optional<CsvMapping>& mapping,
                                const ImportOptions& options, ManagedObjectContext& context,
                                WorkProgress& progress) {
  auto report = importFiles({file}, mapping, options, context, progress);
  if (report && !report.value().refusedFiles.empty()) return report.value().refusedFiles.front();
  return report;
}

Result<ImportReport> importFiles(const std::vector<std::filesystem::path>& files,
                                 const std::optional<CsvMapping>& mapping, const ImportOptions& options,
                                 ManagedObjectContext& context, WorkProgress& progress) {
  WorkProgress saving(progress, kSaveBegins, 1);
  ImportTransaction transaction(options, context, saving);
  if (auto status = transaction.begin(); !status) return status.error();
  const auto share = kSaveBegins / static_cast<double>(files.size());
  double begin = 0;
  for (const auto& each : files) {
    WorkProgress part(progress, begin, begin + share);
    begin += share;
    const auto status = take(each, mapping, transaction, part);
    if (progress.isCancelled()) return importWasCancelled();
    if (!status) transaction.refuse(status.error());
  }
  return transaction.commit();
}

}  // namespace quorlo
