#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/sqlite/sqlite_database.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string_view>

namespace quorlo {

// The library's file and that of the previous major version, in the user's data directory.
inline constexpr std::string_view kStoreFileName = "private.sqlite";
inline constexpr std::string_view kOldStoreFileName = "Quorlos.sqlite";

struct StoreOpeningOptions {
  Date now;  // names the copy of a damaged store
  std::chrono::milliseconds busyTimeout = SqliteDatabase::kBusyTimeout;
};

// Opens the library of the directory, which is made when missing; where there is no library yet, one is
// begun with a copy of the previous version's, else empty. An older layout is brought to the current one.
// Waits for other programs as long as the busy timeout, then reports the store as locked. Any thread.
//
// There is never an empty library in the place of one that cannot be opened: a damaged one is copied for
// rescue and left where it is, and the error says where the copy is. The error's message is the whole line
// with which the program ends.
Result<std::unique_ptr<SqliteDatabase>> openStore(const std::filesystem::path& directory,
                                                  const StoreOpeningOptions& options);

// The same error for whoever reads the records after opening: `cause` is what `store` has just failed with.
// Closes the store. Its statements and transactions must be gone.
Error storeLoadFailure(SqliteDatabase& store, const Error& cause, Date now);

}  // namespace quorlo
