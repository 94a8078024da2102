#include "store/sqlite/store_schema.h"

#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/store_meta.h"
#include "store/sqlite/uuid_repair.h"

#include <string>
#include <string_view>

namespace quorlo {
namespace {

// Moments are UTC microseconds since 1970, texts UTF-8, booleans 0 and 1. A snippet without rich text has
// no row in SnippetText. numberOFImagesString holds the number alone: the words around it depend on the
// user's language.
constexpr std::string_view kVersion1 = R"sql(
CREATE TABLE Category(
  row INTEGER PRIMARY KEY AUTOINCREMENT,
  uuid TEXT NOT NULL DEFAULT '',
  creationDate INTEGER,
  modifiedDate INTEGER,
  title TEXT NOT NULL DEFAULT '',
  type INTEGER NOT NULL DEFAULT 0,
  sort INTEGER NOT NULL DEFAULT 0,
  shortcutKeyCode INTEGER,
  shortcutModifierFlags INTEGER NOT NULL DEFAULT 0,
  expansionBehavior INTEGER NOT NULL DEFAULT 0);
CREATE TABLE Snippet(
  row INTEGER PRIMARY KEY AUTOINCREMENT,
  uuid TEXT NOT NULL DEFAULT '',
  creationDate INTEGER,
  modifiedDate INTEGER,
  deletionDate INTEGER,
  title TEXT NOT NULL DEFAULT '',
  abbreviation TEXT,
  plainText TEXT NOT NULL DEFAULT '',
  formatted INTEGER NOT NULL DEFAULT 0,
  useCount INTEGER NOT NULL DEFAULT 0,
  numberOFImagesString INTEGER NOT NULL DEFAULT 0,
  category INTEGER REFERENCES Category(row) ON DELETE SET NULL);
CREATE INDEX SnippetCategory ON Snippet(category);
CREATE TABLE SnippetText(
  snippet INTEGER PRIMARY KEY REFERENCES Snippet(row) ON DELETE CASCADE,
  text BLOB NOT NULL);
CREATE TABLE App(
  row INTEGER PRIMARY KEY AUTOINCREMENT,
  bundleID TEXT NOT NULL DEFAULT '',
  type INTEGER NOT NULL DEFAULT 0);
CREATE TABLE User(
  row INTEGER PRIMARY KEY AUTOINCREMENT,
  creationDate INTEGER,
  savedChars INTEGER NOT NULL DEFAULT 0,
  savedMinutes REAL NOT NULL DEFAULT 0,
  wordsPerMinute INTEGER NOT NULL DEFAULT 40);
CREATE TABLE SnippetAllowedApps(
  snippet INTEGER NOT NULL REFERENCES Snippet(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE,
  PRIMARY KEY(snippet, app)) WITHOUT ROWID;
CREATE INDEX SnippetAllowedAppsApp ON SnippetAllowedApps(app);
CREATE TABLE SnippetBlockedSnippets(
  snippet INTEGER NOT NULL REFERENCES Snippet(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE,
  PRIMARY KEY(snippet, app)) WITHOUT ROWID;
CREATE INDEX SnippetBlockedSnippetsApp ON SnippetBlockedSnippets(app);
CREATE TABLE CategoryAllowedApps(
  category INTEGER NOT NULL REFERENCES Category(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE,
  PRIMARY KEY(category, app)) WITHOUT ROWID;
CREATE INDEX CategoryAllowedAppsApp ON CategoryAllowedApps(app);
CREATE TABLE CategoryBlockedApps(
  category INTEGER NOT NULL REFERENCES Category(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE,
  PRIMARY KEY(category, app)) WITHOUT ROWID;
CREATE INDEX CategoryBlockedAppsApp ON CategoryBlockedApps(app);
PRAGMA user_version = 1;
)sql";

// SnippetTextSnippet lets the opening learn which texts are rich without reading any of them.
// A title of the previous version counts as the user's own, so that none is replaced. Which section a
// folder belongs to is decided by the library's migration, not here. A change row outlives the record that
// it tells of, so its `row` is no foreign key; changedProperties are the names, separated by commas.
constexpr std::string_view kVersion2 = R"sql(
ALTER TABLE Category ADD COLUMN sourceType INTEGER NOT NULL DEFAULT 0;
ALTER TABLE Snippet ADD COLUMN titleIsCustom INTEGER NOT NULL DEFAULT 0;
UPDATE Snippet SET titleIsCustom = 1 WHERE title <> '';
CREATE INDEX SnippetTextSnippet ON SnippetText(snippet);
CREATE TABLE HistoryTransaction(
  number INTEGER PRIMARY KEY AUTOINCREMENT,
  timestamp INTEGER NOT NULL UNIQUE,
  author TEXT NOT NULL,
  contextName TEXT NOT NULL);
CREATE TABLE HistoryChange(
  number INTEGER PRIMARY KEY,
  transactionNumber INTEGER NOT NULL REFERENCES HistoryTransaction(number) ON DELETE CASCADE,
  entity TEXT NOT NULL,
  row INTEGER NOT NULL,
  uuid TEXT NOT NULL,
  kind INTEGER NOT NULL,
  changedProperties TEXT NOT NULL);
CREATE INDEX HistoryChangeTransaction ON HistoryChange(transactionNumber);
PRAGMA user_version = 2;
)sql";

// What is once done to a library of an older version, under the names that it has in the settings: the titles
// were marked above, the others are done where nothing calls for them. A library that was never saved by
// version 2 is one of version 1 or new.
// A use is counted beside the snippet, so that its text is not written with it.
constexpr std::string_view kVersion3 = R"sql(
CREATE TABLE Meta(key TEXT PRIMARY KEY, value) WITHOUT ROWID;
INSERT INTO Meta VALUES('HasMigratedTo308', 1);
INSERT INTO Meta SELECT 'HasMigratedToVersion23', 1
  WHERE NOT EXISTS(SELECT 1 FROM Snippet WHERE abbreviation = '');
INSERT INTO Meta SELECT 'HasMigratedToVersion300g', 1
  WHERE NOT EXISTS(SELECT 1 FROM Category
                   WHERE (type = 0 AND sourceType <> 10) OR (type = 10 AND sourceType <> 20))
  AND (EXISTS(SELECT 1 FROM HistoryTransaction) OR NOT EXISTS(SELECT 1 FROM Snippet WHERE category IS NULL));
CREATE TABLE SnippetUse(
  snippet INTEGER PRIMARY KEY REFERENCES Snippet(row) ON DELETE CASCADE,
  useCount INTEGER NOT NULL);
INSERT INTO SnippetUse SELECT row, useCount FROM Snippet WHERE useCount <> 0;
ALTER TABLE Snippet DROP COLUMN useCount;
CREATE UNIQUE INDEX SnippetUuid ON Snippet(uuid);
CREATE UNIQUE INDEX CategoryUuid ON Category(uuid);
ALTER TABLE HistoryTransaction ADD COLUMN session TEXT NOT NULL DEFAULT '';
PRAGMA user_version = 3;
)sql";

// The repair comes before the statements, the identity after them.
Status applyVersion3(SqliteDatabase& database) {
  if (auto status = repairUuids(database); !status) return status;
  if (auto status = database.execute(std::string(kVersion3)); !status) return status;
  return renewStoreIdentity(database);
}

Status applyAfter(std::int64_t version, SqliteDatabase& database) {
  static_assert(kSchemaVersion == 3);
  if (version < 1) {
    if (auto status = database.execute(std::string(kVersion1)); !status) return status;
  }
  if (version < 2) {
    if (auto status = database.execute(std::string(kVersion2)); !status) return status;
  }
  return version < 3 ? applyVersion3(database) : Status();
}

}  // namespace

Status createSchema(SqliteDatabase& database) {
  auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::write);
  if (!transaction) return transaction.error();
  if (auto status = applyAfter(0, database); !status) return status;
  return transaction.value().commit();
}

Status migrateSchema(SqliteDatabase& database) {
  auto version = database.integer("PRAGMA user_version");
  if (!version) return version.error();
  if (version.value() == kSchemaVersion) return {};

  auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::write);
  if (!transaction) return transaction.error();
  version = database.integer("PRAGMA user_version");  // another process may have been quicker
  if (!version) return version.error();
  if (auto status = applyAfter(version.value(), database); !status) return status;
  return transaction.value().commit();
}

}  // namespace quorlo
