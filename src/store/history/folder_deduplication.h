#pragma once

#include "base/result.h"

#include <cstdint>

namespace quorlo {

class ManagedObjectContext;

// Merges the folder of the row with its duplicates, and saves. True when there were any. On the thread of the
// context, a background one, which is not used after a failure.
Result<bool> deduplicate(std::int64_t tagObjectID, ManagedObjectContext& performingContext);

}  // namespace quorlo
