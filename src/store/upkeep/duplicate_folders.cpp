#include "store/upkeep/duplicate_folders.h"

#include "store/context/managed_object_context.h"
#include "store/context/relationship.h"
#include "store/records/folder_types.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <utility>

namespace quorlo {
namespace {

// What duplicates have in common: type, section and uuid, the last only of folders that the user made and
// the section only of the others.
using Likeness = std::tuple<std::int64_t, std::int64_t, std::string>;

bool isBuiltIn(const QLCategory& folder) {
  const auto type = categoryType(folder.type());
  return type && *type != CategoryType::Folder && *type != CategoryType::SharedFolder;
}

Likeness likeness(const QLCategory& folder) {
  if (isBuiltIn(folder)) return {folder.type(), folder.sourceType(), {}};
  return {folder.type(), {}, folder.uuid()};
}

bool isOlder(const std::shared_ptr<QLCategory>& left, const std::shared_ptr<QLCategory>& right) {
  return std::pair(left->creationDate(), left->uuid()) < std::pair(right->creationDate(), right->uuid());
}

}  // namespace

std::vector<DuplicateFolders> duplicateFolders(const std::vector<std::shared_ptr<QLCategory>>& folders) {
  std::map<Likeness, std::vector<std::shared_ptr<QLCategory>>> groups;
  for (const auto& each : folders) {
    if (isBuiltIn(*each) || !each->uuid().empty()) groups[likeness(*each)].push_back(each);
  }
  std::vector<DuplicateFolders> found;
  for (auto& [key, alike] : groups) {
    if (alike.size() < 2) continue;
    const auto oldest = std::ranges::min_element(alike, isOlder);
    auto survivor = *oldest;
    alike.erase(oldest);
    found.push_back({std::move(survivor), std::move(alike)});
  }
  return found;
}

void mergeFolder(QLCategory& duplicate, QLCategory& survivor) {
  auto* const context = duplicate.managedObjectContext();
  for (auto* each : Relationship::copy(duplicate.snippets())) {
    each->setCategory(&survivor);
    each->setModifiedDate(context->now());
  }
  context->deleteObject(duplicate);
}

}  // namespace quorlo
