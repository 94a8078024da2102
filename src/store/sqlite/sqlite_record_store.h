#pragma once

#include "store/context/record_store.h"
#include "store/sqlite/sqlite_database.h"

#include <memory>
#include <optional>

namespace quorlo {

// The records in the library's file. Where it is kept for others to wait, what has been read stays true until
// the next save, which ends that: nothing else is written in between.
class SqliteRecordStore final : public RecordStore {
 public:
  explicit SqliteRecordStore(std::unique_ptr<SqliteDatabase> database);
  ~SqliteRecordStore() override;

  SqliteDatabase& database() { return *database_; }
  // Goes on with another file and returns the one before, still open.
  std::unique_ptr<SqliteDatabase> exchangeDatabase(std::unique_ptr<SqliteDatabase> database);

  // Makes every other program that wants to write wait from now on until the next save or the end of this.
  Status keepOthersWaiting();

  Status load(ManagedObjectContext& context) override;
  Result<std::vector<std::shared_ptr<QLSnippet>>> purge(std::span<const std::shared_ptr<QLSnippet>> trashed,
                                                        Date limit, const Writer& writer, Date now) override;
  Result<std::vector<std::shared_ptr<ManagedObject>>> save(const ChangeSet& changes, const Writer& writer,
                                                           Date now, const SaveProgress& progress) override;
  Status refresh(ManagedObjectContext& context, std::span<const HistoryChange> changes) override;
  Result<bool> hasRepaired(std::string_view name) override;
  Status noteRepaired(std::string_view name) override;
  Status reload(ManagedObjectContext& context) override;
  Result<std::optional<AttributedString>> richText(const QLSnippet& snippet) override;

 private:
  Result<SqliteTransaction> beginWriting();

  std::unique_ptr<SqliteDatabase> database_;
  std::optional<SqliteTransaction> held_;  // while others wait
};

}  // namespace quorlo
