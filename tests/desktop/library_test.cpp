// The library's file under the running program.
#include "desktop/quorlo_desktop_test.h"
#include "store/sqlite/sqlite_database.h"

#include <csignal>
#include <filesystem>

namespace quorlo {
namespace {

class DesktopLibraryTest : public QuorloDesktopTest {
 protected:
  static std::filesystem::path file(VirtualDesktop& desktop) {
    return desktop.dataHome() / "org.quorlo.Quorlo" / "private.sqlite";
  }
  xcb_window_t answered_ = 0;

  std::int64_t stored(const char* query) {
    SqliteDatabase database(file(desktop()));
    const auto opened = database.open(SqliteDatabase::Access::readWrite);
    const auto value = opened ? database.integer(query) : Result<std::int64_t>(opened.error());
    return value ? value.value() : (ADD_FAILURE() << value.error().message, -1);
  }
};

TEST_F(DesktopLibraryTest, UseCountsAndStatisticsSurviveARestart) {
  startQuorlo();
  Mousepad editor(desktop());
  type("brb .");
  EXPECT_EQ(editor.textOnceItIs("be right back ."), "be right back .");
  restartQuorlo();
  EXPECT_EQ(
      stored(
          "SELECT coalesce(sum(useCount), 0) FROM SnippetUse JOIN Snippet ON row = snippet WHERE abbreviation = 'brb'"),
      1);
  EXPECT_EQ(stored("SELECT savedChars FROM User"), 10);
  type("brb .");
  EXPECT_EQ(editor.textOnceItIs("be right back .be right back ."), "be right back .be right back .");
  quorlo_.reset();
  EXPECT_EQ(
      stored(
          "SELECT coalesce(sum(useCount), 0) FROM SnippetUse JOIN Snippet ON row = snippet WHERE abbreviation = 'brb'"),
      2);
  EXPECT_EQ(stored("SELECT savedChars FROM User"), 20);
  EXPECT_EQ(stored("SELECT count(*) FROM Category"), 8);
  EXPECT_EQ(stored("SELECT count(*) FROM User"), 1);
}

TEST_F(DesktopLibraryTest, WhatAnotherProcessSavesExpandsWithoutARestart) {
  startQuorlo();
  Mousepad editor(desktop());
  type("brb .");
  EXPECT_EQ(editor.textOnceItIs("be right back ."), "be right back .");
  EXPECT_TRUE(waitUntil([&] { return stored("SELECT sum(useCount) FROM SnippetUse") == 1; }))
      << "saved by itself";

  SqliteDatabase other(file(desktop()));
  ASSERT_TRUE(other.open(SqliteDatabase::Access::readWrite));
  {
    auto transaction = SqliteTransaction::begin(other, SqliteTransaction::Kind::write);
    ASSERT_TRUE(transaction);
    for (const auto* statement :
         {"UPDATE Snippet SET abbreviation = 'bbl', plainText = 'be back later' WHERE abbreviation = 'brb'",
          "INSERT INTO HistoryTransaction (timestamp, author, contextName)"
          " SELECT max(timestamp) + 1, 'test', 'test_context' FROM HistoryTransaction",
          "INSERT INTO HistoryChange (transactionNumber, entity, row, uuid, kind, changedProperties)"
          " SELECT (SELECT max(number) FROM HistoryTransaction), 'Snippet', row, uuid, 1,"
          " 'abbreviation,plainText' FROM Snippet WHERE abbreviation = 'bbl'"}) {
      ASSERT_TRUE(other.execute(statement));
    }
    ASSERT_TRUE(transaction.value().commit());
  }
  EXPECT_TRUE(waitUntil([&] {  // until the change has come in
    type("bbl .");
    return editor.text().ends_with("be back later .");
  })) << editor.text();
}

// A trigger that refuses stands for all that may keep a save from happening.
TEST_F(DesktopLibraryTest, AQuitThatCannotSaveAsksAndLosesNothingUnlessTheUserSaysSo) {
  startQuorlo();
  SqliteDatabase other(file(desktop()));
  ASSERT_TRUE(other.open(SqliteDatabase::Access::readWrite).ok());
  const auto* const refuse =
      "CREATE TRIGGER refusal BEFORE INSERT ON SnippetUse BEGIN SELECT RAISE(ABORT, 'no'); END";
  Mousepad editor(desktop());
  type("brb .");
  EXPECT_EQ(editor.textOnceItIs("be right back ."), "be right back .");
  ASSERT_TRUE(other.execute(refuse).ok());
  const auto answerNextAlert = [&](const char* key) {
    const auto alert = [&] {
      const auto window = desktop().windows().active();
      return window != 0 && window != answered_ &&
             desktop().windows().processOf(window) == quorlo().process().pid();
    };
    ASSERT_TRUE(waitUntil(alert));
    answered_ = desktop().windows().active();
    keyboard().tap(key);
  };
  const auto useCount =
      "SELECT coalesce(sum(useCount), 0) FROM SnippetUse JOIN Snippet ON row = snippet WHERE abbreviation = 'brb'";

  quorlo().process().signal(SIGTERM);
  answerNextAlert("Escape");  // what is wrong
  answerNextAlert("Escape");  // Cancel
  EXPECT_TRUE(waitUntil([&] { return desktop().windows().active() == editor.window(); }));
  type("brb .");
  EXPECT_EQ(editor.textOnceItIs("be right back .be right back ."), "be right back .be right back .");
  const auto kept = stored(useCount);

  quorlo().process().signal(SIGTERM);
  answerNextAlert("Escape");
  answerNextAlert("Return");  // Quit anyway
  EXPECT_EQ(quorlo().process().waitForEnd(kPatience), 0);
  EXPECT_EQ(stored(useCount), kept);
  EXPECT_LT(kept, 2);
}

TEST_F(DesktopLibraryTest, AnUnreadableLibraryEndsTheProgramWithAMessageAndStaysWhereItIs) {
  startQuorlo();
  quorlo_.reset();
  const std::string damage = "this is no library";
  writeFile(file(desktop()), damage);
  const auto log = desktop().directory() / "quorlo.log";
  auto process = desktop().start({QUORLO}, log);
  EXPECT_TRUE(waitUntil([&] {
    return readFile(log).find("###persistentContainer: Failed to load persistent stores:") !=
           std::string::npos;
  })) << readFile(log);
  EXPECT_TRUE(waitUntil([&] {  // the alert, once it is there and has the keyboard
    keyboard().tap("Return");
    return !process.running();
  }));
  EXPECT_EQ(process.exitStatus(), 1);
  EXPECT_EQ(readFile(file(desktop())), damage);
}

}  // namespace
}  // namespace quorlo
