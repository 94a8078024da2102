#include "cli/library/library_access.h"

#include "macros/find_macros.h"
#include "platform/environment/environment.h"
#include "store/context/library_use.h"
#include "store/context/managed_object_context.h"
#include "store/sqlite/file/store_files.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_record_store.h"

#include <utility>

namespace quorlo {
namespace {

ManagedObjectContext::Configuration configuration(const Environment& environment) {
  return {.name = "command_line",
          .transactionAuthor = "command_line",
          .now = [&environment] { return environment.now(); },
          .findMacroStrings = findMacroStrings};
}

Result<std::unique_ptr<ManagedObjectContext>> load(Result<std::unique_ptr<SqliteDatabase>> database,
                                                   const Environment& environment, LibraryUse use) {
  if (!database) return database.error();
  auto store = std::make_unique<SqliteRecordStore>(std::move(database).value());
  auto& opened = store->database();
  if (use == LibraryUse::changing) {
    if (const auto status = store->keepOthersWaiting(); !status) {
      return storeLoadFailure(opened, status.error(), environment.now());
    }
  }
  auto parts = configuration(environment);
  parts.store = std::move(store);
  auto context = std::make_unique<ManagedObjectContext>(std::move(parts));
  if (const auto status = context->load(); !status) {
    return storeLoadFailure(opened, status.error(), environment.now());
  }
  return context;
}

}  // namespace

bool libraryIsMissing(const Environment& environment) {
  const auto directory = environment.dataDirectory();
  return isMissing(directory / kStoreFileName) && isMissing(directory / kOldStoreFileName);
}

Result<std::unique_ptr<ManagedObjectContext>> openOrBeginLibrary(const Environment& environment) {
  return load(openStore(environment.dataDirectory(), {.now = environment.now()}), environment,
              LibraryUse::changing);
}

Result<std::unique_ptr<ManagedObjectContext>> openLibraryToRead(const Environment& environment) {
  return load(openStoreToRead(environment.dataDirectory(), {.now = environment.now()}), environment,
              LibraryUse::reading);
}

std::unique_ptr<ManagedObjectContext> emptyLibrary(const Environment& environment) {
  return std::make_unique<ManagedObjectContext>(configuration(environment));
}

}  // namespace quorlo
