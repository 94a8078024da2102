#include "store/sqlite/sqlite_record_store.h"

#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/record_reader.h"
#include "store/sqlite/record_writer.h"
#include "store/sqlite/sqlite_database.h"

#include <utility>

namespace quorlo {

SqliteRecordStore::SqliteRecordStore(std::unique_ptr<SqliteDatabase> database)
    : database_(std::move(database)) {}

SqliteRecordStore::~SqliteRecordStore() = default;

Status SqliteRecordStore::load(ManagedObjectContext& context) {
  return loadRecords(*database_, context);
}

Result<std::vector<std::shared_ptr<ManagedObject>>> SqliteRecordStore::save(const ChangeSet& changes,
                                                                            const Writer& writer, Date now,
                                                                            const SaveProgress& progress) {
  return writeRecords(*database_, changes, writer, now, progress);
}

Status SqliteRecordStore::refresh(ManagedObjectContext& context, std::span<const HistoryChange> changes) {
  return refreshRecords(*database_, context, changes);
}

Result<std::optional<AttributedString>> SqliteRecordStore::richText(const QLSnippet& snippet) {
  return richTextOf(*database_, snippet.rowNumber());
}

}  // namespace quorlo
