-- A library of the previous major version. What stands after the checkpoint is in the write-ahead log only
-- when the file is left without being closed.
PRAGMA journal_mode = WAL;
CREATE TABLE Category(
  row INTEGER PRIMARY KEY AUTOINCREMENT, uuid TEXT NOT NULL DEFAULT '', creationDate INTEGER, modifiedDate INTEGER,
  title TEXT NOT NULL DEFAULT '', type INTEGER NOT NULL DEFAULT 0, sort INTEGER NOT NULL DEFAULT 0,
  shortcutKeyCode INTEGER, shortcutModifierFlags INTEGER NOT NULL DEFAULT 0,
  expansionBehavior INTEGER NOT NULL DEFAULT 0);
CREATE TABLE Snippet(
  row INTEGER PRIMARY KEY AUTOINCREMENT, uuid TEXT NOT NULL DEFAULT '', creationDate INTEGER, modifiedDate INTEGER,
  deletionDate INTEGER, title TEXT NOT NULL DEFAULT '', abbreviation TEXT, plainText TEXT NOT NULL DEFAULT '',
  formatted INTEGER NOT NULL DEFAULT 0, useCount INTEGER NOT NULL DEFAULT 0,
  numberOFImagesString INTEGER NOT NULL DEFAULT 0,
  category INTEGER REFERENCES Category(row) ON DELETE SET NULL);
CREATE INDEX SnippetCategory ON Snippet(category);
CREATE TABLE SnippetText(
  snippet INTEGER PRIMARY KEY REFERENCES Snippet(row) ON DELETE CASCADE, text BLOB NOT NULL);
CREATE TABLE App(
  row INTEGER PRIMARY KEY AUTOINCREMENT, bundleID TEXT NOT NULL DEFAULT '', type INTEGER NOT NULL DEFAULT 0);
CREATE TABLE User(
  row INTEGER PRIMARY KEY AUTOINCREMENT, creationDate INTEGER, savedChars INTEGER NOT NULL DEFAULT 0,
  savedMinutes REAL NOT NULL DEFAULT 0, wordsPerMinute INTEGER NOT NULL DEFAULT 40);
CREATE TABLE SnippetAllowedApps(
  snippet INTEGER NOT NULL REFERENCES Snippet(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE, PRIMARY KEY(snippet, app)) WITHOUT ROWID;
CREATE INDEX SnippetAllowedAppsApp ON SnippetAllowedApps(app);
CREATE TABLE SnippetBlockedSnippets(
  snippet INTEGER NOT NULL REFERENCES Snippet(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE, PRIMARY KEY(snippet, app)) WITHOUT ROWID;
CREATE INDEX SnippetBlockedSnippetsApp ON SnippetBlockedSnippets(app);
CREATE TABLE CategoryAllowedApps(
  category INTEGER NOT NULL REFERENCES Category(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE, PRIMARY KEY(category, app)) WITHOUT ROWID;
CREATE INDEX CategoryAllowedAppsApp ON CategoryAllowedApps(app);
CREATE TABLE CategoryBlockedApps(
  category INTEGER NOT NULL REFERENCES Category(row) ON DELETE CASCADE,
  app INTEGER NOT NULL REFERENCES App(row) ON DELETE CASCADE, PRIMARY KEY(category, app)) WITHOUT ROWID;
CREATE INDEX CategoryBlockedAppsApp ON CategoryBlockedApps(app);
PRAGMA user_version = 1;

INSERT INTO Category(row, uuid, creationDate, title, type, sort) VALUES
  (1, '0B6A4D2E-0000-4000-8000-000000000001', 1600000000000000, '', -10, 0),
  (2, '0B6A4D2E-0000-4000-8000-000000000002', 1600000000000000, 'Grüße', 0, 1);
INSERT INTO App(row, bundleID, type) VALUES (1, 'org.gnome.TextEditor', 1), (2, 'xterm', 2);
INSERT INTO User(row, creationDate, savedChars, savedMinutes, wordsPerMinute)
  VALUES (1, 1600000000000000, 1234, 6.5, 50);
INSERT INTO Snippet(row, uuid, creationDate, title, abbreviation, plainText, formatted, useCount, category) VALUES
  (1, 'A0000000-0000-4000-8000-000000000001', 1600000000000001, 'Greeting', 'mfg', 'Mit freundlichen Grüßen 👋', 0, 7, 2),
  (2, 'A0000000-0000-4000-8000-000000000002', 1600000000000002, 'Never typed', '', 'No abbreviation', 0, 0, NULL);
INSERT INTO SnippetAllowedApps VALUES (1, 1);
INSERT INTO SnippetBlockedSnippets VALUES (1, 2);
INSERT INTO CategoryAllowedApps VALUES (2, 1);
INSERT INTO CategoryBlockedApps VALUES (2, 2);
PRAGMA wal_checkpoint(TRUNCATE);

INSERT INTO Snippet(row, uuid, creationDate, deletionDate, title, abbreviation, plainText, formatted, category)
  VALUES (3, 'A0000000-0000-4000-8000-000000000003', 1600000000000003, 1600000500000000, '', 'log', 'Only in the log', 1, 2);
INSERT INTO SnippetText VALUES (3, x'A16776657273696F6E01');
UPDATE Snippet SET useCount = 8 WHERE row = 1;
