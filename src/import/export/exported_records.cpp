#include "import/export/exported_records.h"

#include "base/localized.h"
#include "store/context/managed_object_context.h"
#include "store/records/folder_types.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace quorlo {
namespace {

Error missing(std::u16string_view what) {
  return {toUtf8(localized(what))};
}

bool isUsersOwn(const QLCategory& folder) {
  return folder.type() == static_cast<std::int64_t>(CategoryType::Folder) ||
         folder.type() == static_cast<std::int64_t>(CategoryType::SharedFolder);
}

class Selecting {
 public:
  explicit Selecting(const ManagedObjectContext& context) : context_(context) {}

  Result<ExportedRecords> operator()(const WholeLibrary&) const {
    auto snippets = context_.fetch<QLSnippet>({.predicate = QLSnippet::kDeletionDate.isNil()});
    auto folders =
        context_.fetch<QLCategory>({.predicate = {}, .sortDescriptors = QLCategory::sortDescriptors()});
    const auto isExcluded = QLApp::kType.equals(static_cast<std::int64_t>(AppType::Excluded));
    const auto apps = context_.fetch<QLApp>({.predicate = isExcluded});
    if (!snippets) return snippets.error();
    if (!folders) return folders.error();
    if (!apps) return apps.error();

    ExportedRecords records{std::move(snippets).value(), std::move(folders).value(), {}};
    std::erase_if(records.folders, [](const auto& each) { return !isUsersOwn(*each); });
    for (const auto& each : apps.value()) {
      if (!each->bundleID().empty()) records.excludedApplications.push_back(each->bundleID());
    }
    return records;
  }

  Result<ExportedRecords> operator()(const OneFolder& chosen) const {
    const auto folder = context_.recordOfUuid<QLCategory>(chosen.uuid);
    if (!folder) return missing(u"The folder is not in the library any more.");
    const auto isLiveInIt =
        Predicate::all({QLSnippet::kCategory.equals(folder.get()), QLSnippet::kDeletionDate.isNil()});
    auto snippets =
        context_.fetch<QLSnippet>({.predicate = isUsersOwn(*folder) ? isLiveInIt : folder->predicate()});
    if (!snippets) return snippets.error();
    ExportedRecords records{std::move(snippets).value(), {}, {}};
    if (isUsersOwn(*folder)) records.folders.push_back(folder);
    return records;
  }

  Result<ExportedRecords> operator()(const ChosenSnippets& chosen) const {
    std::unordered_map<std::string_view, std::size_t> places;
    for (const auto& each : chosen.uuids) places.emplace(each, places.size());
    const auto all = context_.fetch<QLSnippet>({});
    if (!all) return all.error();
    std::vector<std::shared_ptr<QLSnippet>> inPlace(places.size());
    for (const auto& each : all.value()) {
      const auto place = places.find(each->uuid());
      if (place != places.end() && !inPlace[place->second]) inPlace[place->second] = each;
    }
    if (std::ranges::find(inPlace, nullptr) != inPlace.end()) {
      return missing(u"A chosen snippet is not in the library any more.");
    }
    return ExportedRecords{std::move(inPlace), {}, {}};
  }

 private:
  const ManagedObjectContext& context_;
};

}  // namespace

Result<ExportedRecords> exportedRecords(const ManagedObjectContext& context,
                                        const ExportSelection& selection) {
  return std::visit(Selecting(context), selection);
}

}  // namespace quorlo
