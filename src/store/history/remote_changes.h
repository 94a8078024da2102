#pragma once

#include "store/history/history_transaction.h"

#include <cstdint>
#include <vector>

namespace quorlo {

// What a stretch of history comes to.
struct RemoteChanges {
  // One for each record, in the order in which they can be taken over part by part: what is gone, then what
  // others refer to, then the others; among each other in the order of their first change.
  std::vector<HistoryChange> records;
  std::vector<std::int64_t> foldersToCheck;  // rows of those that may have become duplicates
};

RemoteChanges walk(const std::vector<HistoryTransaction>& transactions);

}  // namespace quorlo
