#pragma once

#include "base/result.h"
#include "store/history/history_transaction.h"
#include "text/attributed_string.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class SqliteDatabase;

// The reading operations of RecordStore; the first within the transaction under way.
Status loadRecords(SqliteDatabase& database, ManagedObjectContext& context);
Status reloadRecords(SqliteDatabase& database, ManagedObjectContext& context);
Status refreshRecords(SqliteDatabase& database, ManagedObjectContext& context,
                      std::span<const HistoryChange> changes);
Result<std::optional<AttributedString>> richTextOf(SqliteDatabase& database, std::int64_t snippetRow);

}  // namespace quorlo
