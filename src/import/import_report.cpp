#include "import/import_report.h"

#include "base/file_draft.h"
#include "base/localized.h"
#include "store/localized_format.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <cstdint>

namespace quorlo {
namespace {

// `one` is whole, `many` has a "%d".
void addCount(std::u16string& sentences, std::size_t count, std::u16string_view one,
              std::u16string_view many) {
  if (count == 0) return;
  if (!sentences.empty()) sentences += u' ';
  sentences += count == 1 ? localized(one) : localizedFormat(many, static_cast<std::int64_t>(count));
}

std::u16string addition(const ImportReport& report) {
  std::u16string sentences;
  if (report.isDryRun) {
    addCount(sentences, report.addedSnippets, u"1 snippet would be added.", u"%d snippets would be added.");
    addCount(sentences, report.addedFolders.size(), u"1 folder would be added.",
             u"%d folders would be added.");
    addCount(sentences, report.restored.size(), u"1 snippet would be taken out of the trash.",
             u"%d snippets would be taken out of the trash.");
  } else {
    addCount(sentences, report.addedSnippets, u"1 snippet was added.", u"%d snippets were added.");
    addCount(sentences, report.addedFolders.size(), u"1 folder was added.", u"%d folders were added.");
    addCount(sentences, report.restored.size(), u"1 snippet was taken out of the trash.",
             u"%d snippets were taken out of the trash.");
  }
  if (!report.addedNothing()) return sentences;
  return localized(report.isDryRun ? u"Nothing would be added." : u"Nothing was added.");
}

nlohmann::ordered_json examplesJson(const ImportReport& report) {
  auto examples = nlohmann::ordered_json::array();
  for (const auto& [title, abbreviation, text] : report.examples) {
    examples.push_back(
        {{"title", toUtf8(title)}, {"abbreviation", toUtf8(abbreviation)}, {"text", toUtf8(text)}});
  }
  return examples;
}

}  // namespace

std::u16string summary(const ImportReport& report) {
  auto sentences = addition(report);
  addCount(sentences, report.excludedApplications.size(),
           u"Abbreviations stay as they are in 1 more application.",
           u"Abbreviations stay as they are in %d more applications.");
  addCount(sentences, report.presentSnippets, u"1 snippet is in the library already.",
           u"%d snippets are in the library already.");
  addCount(sentences, report.duplicates, u"1 duplicate was skipped.", u"%d duplicates were skipped.");
  addCount(sentences, report.emptyRecords, u"1 empty record was skipped.", u"%d empty records were skipped.");
  addCount(sentences, report.refusedAbbreviations, u"1 snippet has no abbreviation now.",
           u"%d snippets have no abbreviation now.");
  addCount(sentences, report.refusedFiles.size(), u"1 file was not imported.",
           u"%d files were not imported.");
  return sentences;
}

std::vector<std::u16string> details(const ImportReport& report) {
  std::vector<std::u16string> lines;
  lines.reserve(report.refusedFiles.size() + report.notices.size());
  for (const auto& each : report.refusedFiles) lines.push_back(toUtf16(each.message));
  for (const auto& each : report.notices) {
    lines.push_back(each.snippet.empty() ? each.message : each.snippet + u": " + each.message);
  }
  return lines;
}

std::u16string text(const ImportReport& report) {
  auto text = summary(report) + u'\n';
  const auto lines = details(report);
  if (!lines.empty()) text += u'\n';
  for (const auto& each : lines) text += each + u'\n';
  return text;
}

std::string json(const ImportReport& report) {
  using nlohmann::ordered_json;
  ordered_json object{
      {"dryRun", report.isDryRun},
      {"added", report.addedSnippets},
      {"addedFolders", report.addedFolders.size()},
      {"duplicates", report.duplicates},
      {"present", report.presentSnippets},
      {"restored", report.restored},
      {"empty", report.emptyRecords},
      {"withoutAbbreviation", report.refusedAbbreviations},
      {"notices", ordered_json::array()},
      {"refusedFiles", ordered_json::array()},
      {"snippets", ordered_json::array()},
      {"folders", report.addedFolders},
      {"excludedApplications", report.excludedApplications},
  };
  for (const auto& each : report.notices) {
    object["notices"].push_back({{"snippet", toUtf8(each.snippet)}, {"message", toUtf8(each.message)}});
  }
  for (const auto& each : report.refusedFiles) object["refusedFiles"].push_back(each.message);
  if (report.isDryRun) object["examples"] = examplesJson(report);
  for (const auto& each : report.imported) {
    for (const auto& uuid : each.snippets) {
      ordered_json snippet{{"uuid", uuid}};
      if (!each.folder.empty()) snippet["folder"] = each.folder;
      object["snippets"].push_back(std::move(snippet));
    }
  }
  // File names may be of any bytes.
  return object.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

Status saveReport(const ImportReport& report, const std::filesystem::path& file) {
  FileDraft draft(file);
  if (auto status = draft.open(); !status) return status;
  if (auto status = draft.write(toUtf8(text(report))); !status) return status;
  return draft.takePlace();
}

}  // namespace quorlo
