#include "store/sqlite/sqlite_record_store.h"

#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/record_reader.h"
#include "store/sqlite/record_writer.h"
#include "store/sqlite/store_meta.h"
#include "store/sqlite/trash_purge.h"

#include <utility>

namespace quorlo {

SqliteRecordStore::SqliteRecordStore(std::unique_ptr<SqliteDatabase> database)
    : database_(std::move(database)) {}

SqliteRecordStore::~SqliteRecordStore() = default;

Status SqliteRecordStore::keepOthersWaiting() {
  auto begun = SqliteTransaction::begin(*database_, SqliteTransaction::Kind::write);
  if (!begun) return begun.error();
  held_.emplace(std::move(begun).value());
  return {};
}

Result<SqliteTransaction> SqliteRecordStore::beginWriting() {
  if (database_->hasMoved()) {
    return Error{"The library \"" + database_->file().string() +
                 "\": its file was deleted or replaced. Nothing is written into the old one any more."};
  }
  if (!held_) return SqliteTransaction::begin(*database_, SqliteTransaction::Kind::write);
  Result<SqliteTransaction> transaction(std::move(*held_));
  held_.reset();
  return transaction;
}

std::unique_ptr<SqliteDatabase> SqliteRecordStore::exchangeDatabase(
    std::unique_ptr<SqliteDatabase> database) {
  return std::exchange(database_, std::move(database));
}

Status SqliteRecordStore::load(ManagedObjectContext& context) {
  if (held_) {
    auto status = loadRecords(*database_, context);
    if (!status) held_.reset();
    return status;
  }
  const auto view = SqliteTransaction::begin(*database_, SqliteTransaction::Kind::read);
  if (!view) return view.error();
  return loadRecords(*database_, context);
}

Result<std::vector<std::shared_ptr<QLSnippet>>> SqliteRecordStore::purge(
    std::span<const std::shared_ptr<QLSnippet>> trashed, Date limit, const Writer& writer, Date now) {
  auto transaction = beginWriting();
  if (!transaction) return transaction.error();
  auto purged = purgeTrash(*database_, trashed, limit, writer, now);
  if (!purged) return purged;
  if (auto status = transaction.value().commit(); !status) return status.error();
  return purged;
}

Result<std::vector<std::shared_ptr<ManagedObject>>> SqliteRecordStore::save(const ChangeSet& changes,
                                                                            const Writer& writer, Date now,
                                                                            const SaveProgress& progress) {
  auto transaction = beginWriting();
  if (!transaction) return transaction.error();
  return writeRecords(*database_, std::move(transaction).value(), changes, writer, now, progress);
}

Status SqliteRecordStore::refresh(ManagedObjectContext& context, std::span<const HistoryChange> changes) {
  return refreshRecords(*database_, context, changes);
}

Result<bool> SqliteRecordStore::hasRepaired(std::string_view name) {
  const auto value = metaValue(*database_, name);
  if (!value) return value.error();
  return value.value().has_value();
}

Status SqliteRecordStore::noteRepaired(std::string_view name) {
  return setMetaValue(*database_, name, "1");
}

Status SqliteRecordStore::reload(ManagedObjectContext& context) {
  return reloadRecords(*database_, context);
}

Result<std::optional<AttributedString>> SqliteRecordStore::richText(const QLSnippet& snippet) {
  return richTextOf(*database_, snippet.rowNumber());
}

}  // namespace quorlo
