#pragma once

#include "store/context/record_store.h"

#include <memory>

namespace quorlo {

class SqliteDatabase;

// The records in the library's file.
class SqliteRecordStore final : public RecordStore {
 public:
  explicit SqliteRecordStore(std::unique_ptr<SqliteDatabase> database);
  ~SqliteRecordStore() override;

  SqliteDatabase& database() { return *database_; }

  Status load(ManagedObjectContext& context) override;
  Result<std::vector<std::shared_ptr<ManagedObject>>> save(const ChangeSet& changes, const Writer& writer,
                                                           Date now, const SaveProgress& progress) override;
  Status refresh(ManagedObjectContext& context, std::span<const HistoryChange> changes) override;
  Result<std::optional<AttributedString>> richText(const QLSnippet& snippet) override;

 private:
  std::unique_ptr<SqliteDatabase> database_;
};

}  // namespace quorlo
