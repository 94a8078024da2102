#pragma once

#include "base/date.h"
#include "fakes/temporary_directory.h"
#include "store/history/history_transaction.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/store_schema.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace quorlo {

// A store file of its own, with nothing in it but what a test writes.
class HistoryFile {
 public:
  HistoryFile() {
    EXPECT_TRUE(database.open(SqliteDatabase::Access::create));
    EXPECT_TRUE(database.useWriteAheadLog());
    EXPECT_TRUE(createSchema(database));
  }

  // A transaction so many microseconds after 1970, with one change.
  void add(int time, const std::string& author, const std::string& contextName,
           const std::string& entity = "Snippet", int row = 1, int kind = 0,
           const std::string& changedProperties = "") {
    auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::write);
    ASSERT_TRUE(transaction);
    ASSERT_TRUE(database.execute("INSERT INTO HistoryTransaction(timestamp, author, contextName) VALUES(" +
                                 std::to_string(time) + ", '" + author + "', '" + contextName + "')"));
    ASSERT_TRUE(database.execute(
        "INSERT INTO HistoryChange(transactionNumber, entity, row, uuid, kind, changedProperties) VALUES(" +
        std::to_string(database.lastInsertRowNumber()) + ", '" + entity + "', " + std::to_string(row) +
        ", '', " + std::to_string(kind) + ", '" + changedProperties + "')"));
    ASSERT_TRUE(transaction.value().commit());
  }

  TemporaryDirectory directory;
  SqliteDatabase database{directory / "private.sqlite"};
};

inline Date microsecond(int number) {
  return Date(std::chrono::microseconds(number));
}

}  // namespace quorlo
