#pragma once

#include "store/context/record_store.h"

namespace quorlo {

class SqliteDatabase;

// RecordStore::purge, within the transaction under way.
Result<std::vector<std::shared_ptr<QLSnippet>>> purgeTrash(
    SqliteDatabase& database, std::span<const std::shared_ptr<QLSnippet>> trashed, Date limit,
    const Writer& writer, Date now);

}  // namespace quorlo
