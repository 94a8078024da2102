#pragma once

#include <memory>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLSnippet;

// Live snippets outside shared folders that have one abbreviation, as two devices or two programs can give
// it. Only the oldest of them expands.
struct SharedAbbreviation {
  std::shared_ptr<QLSnippet> oldest;
  std::vector<std::shared_ptr<QLSnippet>> others;  // never empty
};

std::vector<SharedAbbreviation> sharedAbbreviations(const ManagedObjectContext& context);

}  // namespace quorlo
