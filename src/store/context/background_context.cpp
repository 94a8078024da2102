#include "store/context/background_context.h"

#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_record_store.h"

#include <utility>

namespace quorlo {

Result<std::unique_ptr<ManagedObjectContext>> openBackgroundContext(
    const std::filesystem::path& storeFile, ManagedObjectContext::Configuration configuration,
    LibraryUse use) {
  auto database = std::make_unique<SqliteDatabase>(storeFile);
  if (auto status = database->open(SqliteDatabase::Access::readWrite); !status) return status.error();
  auto store = std::make_unique<SqliteRecordStore>(std::move(database));
  if (use == LibraryUse::changing) {
    if (auto status = store->keepOthersWaiting(); !status) return status.error();
  }
  configuration.store = std::move(store);
  auto context = std::make_unique<ManagedObjectContext>(std::move(configuration));
  if (auto status = context->load(); !status) return status.error();
  return context;
}

}  // namespace quorlo
