#include "program/doctor/duplicates_check.h"

#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/store_schema.h"

#include <chrono>
#include <system_error>

namespace quorlo {
namespace {

constexpr std::chrono::seconds kWaitForOthers{5};

constexpr std::string_view kAbbreviations =
    "SELECT abbreviation FROM Snippet LEFT JOIN Category ON Category.row = category "
    "WHERE deletionDate IS NULL AND abbreviation <> '' AND coalesce(sourceType, 0) <> 20 "
    "GROUP BY abbreviation HAVING count(*) > 1 ORDER BY abbreviation";
constexpr std::string_view kFolderTitles =
    "SELECT title FROM Category WHERE type = 0 GROUP BY title HAVING count(*) > 1 ORDER BY title";

Status addTexts(SqliteDatabase& database, std::string_view query, std::vector<std::string>& texts) {
  auto rows = database.prepare(query);
  for (;;) {
    const auto row = rows.step();
    if (!row) return row.error();
    if (!row.value()) return {};
    texts.emplace_back(rows.text(0));
  }
}

}  // namespace

Result<LibraryDuplicates> findDuplicates(const std::filesystem::path& directory) {
  LibraryDuplicates found;
  const auto file = directory / kStoreFileName;
  std::error_code failure;
  if (!std::filesystem::exists(file, failure)) return found;
  SqliteDatabase database(file);
  if (auto status = database.open(SqliteDatabase::Access::readOnly, kWaitForOthers); !status)
    return status.error();
  const auto version = database.integer("PRAGMA user_version");
  if (!version) return version.error();
  if (version.value() != kSchemaVersion) return found;
  if (auto status = addTexts(database, kAbbreviations, found.abbreviations); !status) return status.error();
  if (auto status = addTexts(database, kFolderTitles, found.folderTitles); !status) return status.error();
  return found;
}

}  // namespace quorlo
