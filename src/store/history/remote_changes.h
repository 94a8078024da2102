#pragma once

#include "store/history/history_transaction.h"

#include <cstdint>
#include <vector>

namespace quorlo {

// What a stretch of history comes to.
struct RemoteChanges {
  std::vector<HistoryChange> records;        // one for each record, in the order of their first change
  std::vector<std::int64_t> foldersToCheck;  // rows of those that may have become duplicates
};

RemoteChanges walk(const std::vector<HistoryTransaction>& transactions);

}  // namespace quorlo
