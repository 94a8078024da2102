#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/context/record_store.h"

#include <memory>
#include <vector>

namespace quorlo {

class SqliteDatabase;
class SqliteTransaction;

// RecordStore::save: the changes, and what the history says of them, in the write transaction, which it
// commits.
Result<std::vector<std::shared_ptr<ManagedObject>>> writeRecords(SqliteDatabase& database,
                                                                 SqliteTransaction transaction,
                                                                 const ChangeSet& changes,
                                                                 const Writer& writer, Date now,
                                                                 const SaveProgress& progress);

}  // namespace quorlo
