#pragma once

#include "base/result.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

class SqliteDatabase;

// Facts about the library as a whole, in the table Meta of its file. Writing one is a statement like any
// other: it belongs to the transaction under way, or is one of its own.

// A random UUID that tells this file from every other one, copies restored from a backup included.
inline constexpr std::string_view kStoreIdentity = "storeIdentity";

// Nothing when the library has no value under the key.
Result<std::optional<std::string>> metaValue(SqliteDatabase& database, std::string_view key);
Status setMetaValue(SqliteDatabase& database, std::string_view key, std::string_view value);

// For a file that takes the place of another one, such as a restored backup.
Status renewStoreIdentity(SqliteDatabase& database);

}  // namespace quorlo
