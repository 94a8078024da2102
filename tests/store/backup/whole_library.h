#pragma once

#include "import/random_library.h"
#include "store/records/ql_user.h"
#include "store/sqlite/sqlite_record_store.h"
#include "store/sqlite/test_store.h"

#include <memory>
#include <string>

namespace quorlo {

// A library at random in the store's file, with uses, statistics and rules of single snippets.
inline void fillAtRandom(const TestStore& store, Random& random) {
  auto opened = store.open();
  if (!opened) std::abort();
  TestLibrary library(std::make_unique<SqliteRecordStore>(std::move(opened).value()));
  if (!library.context.load()) std::abort();
  fillAtRandom(library, random);
  const auto app = library.app("org.example.Editor", AppType::Allowed);
  for (const auto& each : library.context.fetch<QLSnippet>({}).value()) {
    each->setUseCount(static_cast<std::int64_t>(pick(random, 1000)));
    if (pick(random, 2) == 0) each->addAllowedApp(*app);
  }
  library.controller.currentUser()->setSavedChars(static_cast<std::int64_t>(pick(random, 100'000)));
  if (!library.context.save()) std::abort();
}

// Every row of every table, with the layout, but for what tells one file from another.
inline std::string everything(SqliteDatabase& database) {
  std::string all;
  auto tables = database.prepare(
      "SELECT name, sql, (SELECT count(*) FROM pragma_table_info(t.name)) FROM sqlite_schema AS t"
      " WHERE type = 'table' ORDER BY name");
  while (tables.step().value()) {
    const std::string name(tables.text(0));
    const auto* const condition =
        name == "Meta" ? " WHERE key NOT IN ('storeIdentity', 'logMarks', 'logFile')" : "";
    all.append(tables.text(1)).append("\n");
    all += rows(database, "SELECT * FROM \"" + name + "\"" + condition + " ORDER BY 1, 2",
                static_cast<int>(tables.integer(2)));
  }
  return all;
}

inline std::string everything(const std::filesystem::path& file) {
  SqliteDatabase database(file);
  if (const auto status = database.open(SqliteDatabase::Access::readOnly); !status)
    return status.error().message;
  return everything(database);
}

}  // namespace quorlo
