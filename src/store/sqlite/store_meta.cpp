#include "store/sqlite/store_meta.h"

#include "store/sqlite/sqlite_database.h"
#include "store/uuid.h"

namespace quorlo {

Result<std::optional<std::string>> metaValue(SqliteDatabase& database, std::string_view key) {
  auto statement = database.prepare("SELECT value FROM Meta WHERE key = ?");
  const auto row = statement.bind(1, key).step();
  if (!row) return row.error();
  if (!row.value()) return std::optional<std::string>();
  return std::optional(std::string(statement.text(0)));
}

Status setMetaValue(SqliteDatabase& database, std::string_view key, std::string_view value) {
  return database.prepare("INSERT OR REPLACE INTO Meta(key, value) VALUES(?, ?)")
      .bind(1, key)
      .bind(2, value)
      .run();
}

Status renewStoreIdentity(SqliteDatabase& database) {
  return setMetaValue(database, kStoreIdentity, randomUuid());
}

}  // namespace quorlo
