#include "program/doctor/library_check.h"

#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/store_schema.h"

#include <chrono>
#include <string>
#include <system_error>

namespace quorlo {
namespace {

constexpr std::chrono::seconds kWaitForOthers{5};

}  // namespace

Result<std::optional<std::size_t>> checkLibrary(const std::filesystem::path& directory) {
  const auto file = directory / kStoreFileName;
  std::error_code failure;
  if (!std::filesystem::exists(file, failure)) return std::optional<std::size_t>();

  SqliteDatabase database(file);
  if (auto status = database.open(SqliteDatabase::Access::readOnly, kWaitForOthers); !status)
    return status.error();
  const auto version = database.integer("PRAGMA user_version");
  if (!version) return version.error();
  if (version.value() > kSchemaVersion) {
    return Error{"The library " + file.string() +
                 " was made by a newer Quorlo. Install that version, or newer, to go on using it."};
  }
  auto check = database.prepare("PRAGMA quick_check(1)");
  const auto row = check.step();
  if (!row) return row.error();
  if (check.text(0) != "ok") {
    return Error{"The library " + file.string() + " is damaged: " + std::string(check.text(0)) +
                 ". Keep a copy of it and put back a backup."};
  }
  check.reset();
  const auto count = database.integer("SELECT count(*) FROM Snippet WHERE deletionDate IS NULL");
  if (!count) return count.error();
  return std::optional(static_cast<std::size_t>(count.value()));
}

}  // namespace quorlo
