#include "import/export/library_json.h"

#include "import/export/export_run.h"
#include "import/export/exported_records.h"
#include "import/export/exported_text.h"
#include "store/exchange/json_document.h"
#include "store/exchange/library_exchange.h"
#include "store/localized_format.h"
#include "store/records/folder_types.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/uuid.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace quorlo {
namespace {

using nlohmann::ordered_json;

// The uuids under which records stand in a document: their own, but for a second record of the same one,
// whose follows from it.
class DocumentUuids {
 public:
  std::string take(const std::string& own) {
    auto uuid = toUtf8(toUtf16(own));  // well-formed
    for (int number = 2; !taken_.insert(uuid).second; ++number) {
      uuid = uuidForContent(own + '#' + std::to_string(number));
    }
    return uuid;
  }

 private:
  std::unordered_set<std::string> taken_;
};

// No document has them in names, but older versions let them into a library.
std::u16string withoutNul(std::u16string name) {
  std::ranges::replace(name, u'\0', u'\uFFFD');
  return name;
}

class JsonExport {
 public:
  JsonExport(const ExportedRecords& records, ExportRun& run) : records_(records), run_(run) {}

  void write() {
    run_.write("{\n  \"version\": 1,\n  \"snippets\": [");
    for (const auto& each : records_.snippets) {
      if (!run_.nextSnippet()) return;
      writeElement(form(*each));
    }
    closeList();
    run_.write(",\n  \"folders\": [");
    for (const auto& each : records_.folders) writeElement(form(*each));
    closeList();
    run_.setFolderCount(records_.folders.size());
    run_.write(",\n  \"excludedApplications\": " + textOf(records_.excludedApplications) + "\n}\n");
    if (run_.writtenBytes() > kLargestDocument) {
      run_.warn(
          localized(u"The file is larger than 256 MiB, which is more than Quorlo reads at once. Export the "
                    u"folders one by one to have files that can be imported."));
    }
  }

 private:
  ordered_json form(const QLSnippet& snippet) {
    const auto& uuid = uuids_.emplace(&snippet, snippetUuids_.take(snippet.uuid())).first->second;
    auto text = exportedText(snippet, run_);
    const auto type =
        snippet.type().value_or(text.isPlain() ? SnippetType::plainText : SnippetType::formatted);
    return toJson(SnippetExchange{uuid, withoutNul(exchangedTitle(snippet)), std::move(text),
                                  static_cast<std::int64_t>(type), withoutNul(snippet.abbreviation())});
  }

  ordered_json form(const QLCategory& folder) {
    auto form = exchangeForm(folder);
    form.uuid = folderUuids_.take(folder.uuid());
    form.title = withoutNul(std::move(form.title));
    if (!expansionBehavior(form.expansionBehavior)) {
      form.expansionBehavior = static_cast<std::int64_t>(ExpansionBehavior::Disabled);
    }
    for (const auto* each : folder.snippets()) {
      if (const auto uuid = uuids_.find(each); uuid != uuids_.end()) form.snippets.push_back(uuid->second);
    }
    std::ranges::sort(form.snippets);
    return toJson(form);
  }

  void writeElement(const ordered_json& element) {
    run_.write(std::exchange(isFirst_, false) ? "\n    " : ",\n    ");
    run_.write(textOf(element));
  }

  void closeList() { run_.write(std::exchange(isFirst_, true) ? "]" : "\n  ]"); }

  static std::string textOf(const ordered_json& value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
  }

  const ExportedRecords& records_;
  ExportRun& run_;
  DocumentUuids snippetUuids_;
  DocumentUuids folderUuids_;
  std::unordered_map<const QLSnippet*, std::string> uuids_;
  bool isFirst_ = true;  // of the list that is being written
};

}  // namespace

void writeLibraryJson(const ExportedRecords& records, ExportRun& run) {
  JsonExport(records, run).write();
}

}  // namespace quorlo
