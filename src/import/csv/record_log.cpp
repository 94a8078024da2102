#include "import/csv/record_log.h"

#include "base/log.h"
#include "import/csv/csv_mapping.h"
#include "import/import_data.h"
#include "import/work_progress.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <string>

namespace quorlo {
namespace {

std::string index(std::optional<std::size_t> column) {
  return column ? std::to_string(*column) : "none";
}

}  // namespace

void logColumns(const CsvColumns& columns) {
  logDebug("titleIndex: " + index(columns.title));
  logDebug("abbreviationIndex: " + index(columns.abbreviation));
  logDebug("textIndex: " + index(columns.text));
}

void logRecords(const ImportData& records, const CsvColumns& columns, const WorkProgress& progress) {
  for (const auto& each : records.snippets) {
    if (progress.isCancelled()) return;
    auto record = nlohmann::ordered_json::object();
    if (columns.title) record["title"] = toUtf8(each.title);
    if (columns.abbreviation) record["abbreviation"] = toUtf8(each.abbreviation);
    if (columns.text) record["plainText"] = toUtf8(each.text.string());
    logDebug("record: " + record.dump());
  }
}

}  // namespace quorlo
