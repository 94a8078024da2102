#pragma once

#include "base/result.h"

#include <cstdint>

namespace quorlo {

class SqliteDatabase;

// The layout of the library's file. Tables and columns have the names of the entities and attributes;
// `row` is the number of a record, never given twice. See store_schema.cpp for the columns.

// What PRAGMA user_version holds. 1 is the layout of the previous major version.
inline constexpr std::int64_t kSchemaVersion = 3;

// Lays out an empty database, in one transaction.
Status createSchema(SqliteDatabase& database);

// Brings an older layout to the current one, in one transaction; does nothing to a current one. The
// version must be one from 1 to kSchemaVersion.
Status migrateSchema(SqliteDatabase& database);

}  // namespace quorlo
