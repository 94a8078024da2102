#include "store/history/folder_deduplication.h"

#include "base/log.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_category.h"
#include "store/upkeep/duplicate_folders.h"
#include "text/utf.h"

#include <algorithm>
#include <memory>
#include <string>

namespace quorlo {

Result<bool> deduplicate(std::int64_t tagObjectID, ManagedObjectContext& performingContext) {
  const auto tag =
      std::dynamic_pointer_cast<QLCategory>(performingContext.record(Entity::category, tagObjectID));
  if (!tag) {
    logError("ERROR: #" + std::string(entityName(Entity::category)) + "/" + std::to_string(tagObjectID));
    return false;
  }
  const auto alike = performingContext.fetch<QLCategory>(
      {.predicate = QLCategory::kType.equals(tag->type()),
       .sortDescriptors = {{.key = &QLCategory::kCreationDate, .ascending = false}}});
  if (!alike) return alike.error();
  for (const auto& [survivor, duplicates] : duplicateFolders(alike.value())) {
    if (survivor != tag && std::ranges::find(duplicates, tag) == duplicates.end()) continue;
    logInfo("deduplicate(tagObjectID:performingContext:): Deduplicating tag with name: " +
            userText(toUtf8(tag->title())) + ", count:" + std::to_string(1 + duplicates.size()));
    for (const auto& each : duplicates) mergeFolder(*each, *survivor);
    if (const auto saved = performingContext.save(); !saved) return saved.error();
    return true;
  }
  return false;
}

}  // namespace quorlo
