#include "import/last_import.h"

#include "base/localized.h"
#include "base/whole_file.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <sys/types.h>

#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

using Json = nlohmann::json;

constexpr mode_t kOnlyForTheUser = 0600;

std::filesystem::path fileIn(const std::filesystem::path& dataDirectory) {
  return dataDirectory / "last-import.json";
}

std::vector<std::string> texts(const Json& document, const char* key) {
  std::vector<std::string> list;
  if (!document.is_object() || !document.contains(key)) return list;
  for (const auto& each : document[key]) {
    if (each.is_string()) list.push_back(each);
  }
  return list;
}

}  // namespace

Status rememberImport(const ImportReport& report, const std::filesystem::path& dataDirectory) {
  if (report.isDryRun || report.addedNothing()) return {};
  Json document{{"imported", Json::array()},
                {"restored", report.restored},
                {"folders", report.addedFolders},
                {"excludedApplications", report.excludedApplications}};
  for (const auto& [folder, snippets] : report.imported) {
    document["imported"].push_back({{"folder", Json::array({folder})}, {"snippets", snippets}});
  }
  return writeWholeFile(fileIn(dataDirectory), document.dump(-1, ' ', false, Json::error_handler_t::replace),
                        kOnlyForTheUser);
}

Result<ImportReport> lastImport(const std::filesystem::path& dataDirectory) {
  std::ifstream file(fileIn(dataDirectory), std::ios::binary);
  const auto document = Json::parse(file, nullptr, false);
  if (!document.is_object() || !document.contains("imported")) {
    return Error{toUtf8(localized(u"There is no import that could be undone."))};
  }
  ImportReport report;
  report.restored = texts(document, "restored");
  report.addedFolders = texts(document, "folders");
  report.excludedApplications = texts(document, "excludedApplications");
  for (const auto& each : document["imported"]) {
    ImportedInto& group = report.imported.emplace_back();
    if (const auto folder = texts(each, "folder"); !folder.empty()) group.folder = folder.front();
    group.snippets = texts(each, "snippets");
    report.addedSnippets += group.snippets.size();
  }
  return report;
}

void forgetImport(const std::filesystem::path& dataDirectory) {
  std::error_code ignored;
  std::filesystem::remove(fileIn(dataDirectory), ignored);
}

}  // namespace quorlo
