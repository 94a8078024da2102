#pragma once

#include "base/log.h"
#include "fakes/temporary_directory.h"
#include "store/sqlite/file/store_files.h"
#include "store/sqlite/file/store_opening.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {

// A data directory that does not exist yet; the log is collected.
struct TestStore {
  TemporaryDirectory temporary{TemporaryDirectory::quickParent()};
  std::filesystem::path directory = temporary / "data";
  std::filesystem::path file = directory / kStoreFileName;
  std::vector<std::string> log;
  Subscription redirection = redirectLog([this](LogLevel, std::string_view line) { log.emplace_back(line); });

  Result<std::unique_ptr<SqliteDatabase>> open(
      std::chrono::milliseconds busyTimeout = SqliteDatabase::kBusyTimeout) const {
    return openStore(directory, {Date(std::chrono::seconds(1'700'000'000)), busyTimeout});
  }

  // Made by opening it and running the statements, closed again.
  void make(const std::string& sql = "SELECT 1") const {
    const auto store = open();
    if (!store || !store.value()->execute(sql)) std::abort();
  }
};

inline std::string contents(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void write(const std::filesystem::path& file, std::string_view bytes) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// All rows of a query, columns separated by "|", NULL as nothing.
inline std::string rows(SqliteDatabase& database, std::string_view sql, int columns) {
  std::string all;
  auto statement = database.prepare(sql);
  for (;;) {
    const auto row = statement.step();
    if (!row) return row.error().message;
    if (!row.value()) return all;
    for (int i = 0; i < columns; ++i) all.append(i == 0 ? "" : "|").append(statement.text(i));
    all += '\n';
  }
}

}  // namespace quorlo
