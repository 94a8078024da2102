#pragma once

#include "store/managed_object_context.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_record_store.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>

namespace quorlo {

// The main context's, over a connection of its own; still to be loaded.
inline ManagedObjectContext::Configuration viewConfiguration(const std::filesystem::path& storeFile) {
  auto database = std::make_unique<SqliteDatabase>(storeFile);
  if (!database->open(SqliteDatabase::Access::readWrite)) std::abort();
  return {.name = "view_context",
          .transactionAuthor = "main_app",
          .now = [] { return std::chrono::system_clock::now(); },
          .store = std::make_unique<SqliteRecordStore>(std::move(database))};
}

}  // namespace quorlo
