#include "store/opened_files.h"

#include "store/localized_format.h"
#include "text/utf.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string>

namespace quorlo {
namespace {

bool isLibraryDocument(const std::filesystem::path& file) {
  auto extension = file.extension().string();
  std::ranges::transform(extension, extension.begin(), [](unsigned char c) { return std::tolower(c); });
  return extension == ".quorlo" || extension == ".json";
}

Result<LibraryReadReport> read(const std::filesystem::path& file, ManagedObjectContext& context) {
  if (isLibraryDocument(file)) return readLibraryFile(file, context);
  return Error{toUtf8(localizedFormat(
      u"%@ cannot be opened: Quorlo reads libraries (.quorlo and .json files).", toUtf16(file.string())))};
}

void add(LibraryReadReport& sum, LibraryReadReport report) {
  sum.addedSnippets += report.addedSnippets;
  sum.addedFolders += report.addedFolders;
  sum.presentSnippets += report.presentSnippets;
  std::ranges::move(report.warnings, std::back_inserter(sum.warnings));
}

}  // namespace

OpenedFiles readOpenedFiles(const std::vector<std::filesystem::path>& files, ManagedObjectContext& context) {
  OpenedFiles opened;
  for (const auto& each : files) {
    if (auto report = read(each, context)) {
      add(opened.report, std::move(report).value());
    } else {
      opened.refused.push_back(report.error());
    }
  }
  return opened;
}

}  // namespace quorlo
