#include "store/sqlite/uuid_repair.h"

#include "store/sqlite/sqlite_database.h"
#include "store/uuid.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

struct Table {
  std::string name;
  std::string contents;  // the columns that a new uuid is made of
  int columns;
};

struct Unnamed {
  std::int64_t row;
  std::string contents;
};

// Those that cannot keep their uuid, the oldest first.
Result<std::vector<Unnamed>> unnamed(SqliteDatabase& database, const Table& table) {
  auto rows =
      database.prepare("SELECT row, uuid, " + table.contents + " FROM " + table.name +
                       " WHERE row IN (SELECT row FROM (SELECT row, uuid, "
                       "row_number() OVER (PARTITION BY uuid ORDER BY creationDate, row) AS place FROM " +
                       table.name + ") WHERE place > 1 OR uuid = '') ORDER BY creationDate, row");
  std::vector<Unnamed> found;
  for (;;) {
    const auto row = rows.step();
    if (!row) return row.error();
    if (!row.value()) return found;
    std::string contents = table.name;
    for (int column = 1; column <= 1 + table.columns; ++column) {
      contents.append(1, '\0').append(rows.text(column));
    }
    found.push_back({rows.integer(0), std::move(contents)});
  }
}

Result<std::unordered_set<std::string>> uuidsOf(SqliteDatabase& database, const Table& table) {
  std::unordered_set<std::string> uuids;
  auto rows = database.prepare("SELECT uuid FROM " + table.name);
  for (;;) {
    const auto row = rows.step();
    if (!row) return row.error();
    if (!row.value()) return uuids;
    uuids.emplace(rows.text(0));
  }
}

Status giveFreshUuids(SqliteDatabase& database, const Table& table) {
  const auto records = unnamed(database, table);
  if (!records) return records.error();
  if (records.value().empty()) return {};
  auto taken = uuidsOf(database, table);
  if (!taken) return taken.error();
  auto update = database.prepare("UPDATE " + table.name + " SET uuid = ? WHERE row = ?");
  for (const auto& each : records.value()) {
    // Records of the same contents are told apart by their order.
    std::string uuid;
    for (int number = 0; uuid.empty() || !taken.value().insert(uuid).second; ++number) {
      uuid = uuidForContent(each.contents + '\0' + std::to_string(number));
    }
    if (auto status = update.bind(1, std::string_view(uuid)).bind(2, each.row).run(); !status) return status;
    update.reset();
  }
  return {};
}

constexpr const char* kMergeFolders = R"sql(
CREATE TEMP TABLE MergedFolder AS
  SELECT row, survivor FROM (
    SELECT row, uuid, first_value(row) OVER (PARTITION BY uuid, type ORDER BY creationDate, row) AS survivor
    FROM Category WHERE uuid <> '')
  WHERE row <> survivor;
UPDATE Snippet SET category = survivor FROM MergedFolder WHERE category = MergedFolder.row;
DELETE FROM Category WHERE row IN (SELECT row FROM MergedFolder);
DROP TABLE MergedFolder;
)sql";

}  // namespace

Status repairUuids(SqliteDatabase& database) {
  if (auto status = database.execute(kMergeFolders); !status) return status;
  if (auto status = giveFreshUuids(database, {"Category", "creationDate, title, type", 3}); !status) {
    return status;
  }
  return giveFreshUuids(database, {"Snippet", "creationDate, title, abbreviation, plainText, formatted", 5});
}

}  // namespace quorlo
