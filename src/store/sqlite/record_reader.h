#pragma once

#include "base/result.h"
#include "store/history/history_transaction.h"
#include "text/attributed_string.h"

#include <cstdint>
#include <span>

namespace quorlo {

class ManagedObjectContext;
class SqliteDatabase;

// Fills an empty context with every record of the library. Rich texts are left for richTextOf. After an error
// the context holds a part of them and is good for nothing.
Status loadRecords(SqliteDatabase& database, ManagedObjectContext& context);

// Brings the records that others have changed up to date. What is changed here and not saved yet stays,
// property by property; a record with such changes that others have deleted stays, too, and is stored again
// by the next save. After an error some records may not be up to date; the same changes can be taken over
// again.
Status refreshRecords(SqliteDatabase& database, ManagedObjectContext& context,
                      std::span<const HistoryChange> changes);

// An error when the store has none for the row, or a damaged one.
Result<AttributedString> richTextOf(SqliteDatabase& database, std::int64_t snippetRow);

}  // namespace quorlo
