#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/context/record_store.h"

#include <memory>
#include <vector>

namespace quorlo {

class SqliteDatabase;

// RecordStore::save: the changes, and what the history says of them, in one transaction.
Result<std::vector<std::shared_ptr<ManagedObject>>> writeRecords(SqliteDatabase& database,
                                                                 const ChangeSet& changes,
                                                                 const Writer& writer, Date now,
                                                                 const SaveProgress& progress);

}  // namespace quorlo
