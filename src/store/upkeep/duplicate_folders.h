#pragma once

#include <memory>
#include <vector>

namespace quorlo {

class QLCategory;

// Folders that are one to the user, each made on another device: built-in ones of the same section and
// kind, the user's own with the same uuid. The oldest survives, a folder without a creation date being
// the oldest of all, so that every device keeps the same one.
struct DuplicateFolders {
  std::shared_ptr<QLCategory> survivor;
  std::vector<std::shared_ptr<QLCategory>> duplicates;  // never empty
};

// The groups among folders of any kinds, in any order.
std::vector<DuplicateFolders> duplicateFolders(const std::vector<std::shared_ptr<QLCategory>>& folders);

// Moves the snippets, trashed ones too, into the survivor as changed now, and deletes the duplicate. Both
// are in one context.
void mergeFolder(QLCategory& duplicate, QLCategory& survivor);

}  // namespace quorlo
