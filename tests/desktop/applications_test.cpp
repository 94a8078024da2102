// Applications that take what is inserted in their own way, by the user's table.
#include "desktop/quorlo_desktop_test.h"

namespace quorlo {
namespace {

class DesktopApplicationsTest : public QuorloDesktopTest {
 protected:
  void writeTable(const std::string& text) {
    writeFile(desktop().configHome() / "quorlo" / "applications", text);
  }
};

// A terminal of an unknown class: Ctrl+V types a control character.
TEST_F(DesktopApplicationsTest, AnEntryMadeWhileQuorloRunsChangesTheWayOfPasting) {
  startQuorlo();
  Xterm viewer(desktop(), "viewer", "Viewer");
  type("a brb");
  type(" ");
  EXPECT_EQ(viewer.textOnceItIs("a \x16"), "a \x16");
  writeTable("viewer = terminal\n");
  type("b sig c");
  EXPECT_EQ(viewer.textOnceItIs("a \x16"
                                "b Kind regards, Ada c"),
            "a \x16"
            "b Kind regards, Ada c");
}

// GTK erases a letter with its accents by one press of Backspace, Qt one code point.
TEST_F(DesktopApplicationsTest, CombiningSequencesAreErasedWholeAndTheCaretPassesEmoji) {
  startQuorlo(libraryOf({{"e\u0301x", "[%cursor%\U0001F468\u200D\U0001F469e\u0301]"}}),
              {{"PasteBetweenSnippetPartsDelay", "0.5"}});
  const std::string expected = "a [z\U0001F468\u200D\U0001F469e\u0301] ";
  desktop().setLayout("vn");
  Mousepad mousepad(desktop());
  type("a e\u0301x z");
  EXPECT_EQ(mousepad.textOnceItIs(expected), expected);
  Featherpad featherpad(desktop());
  type("a e\u0301x z");
  EXPECT_EQ(featherpad.textOnceItIs(expected), expected);
  desktop().setLayout("us");
}

TEST_F(DesktopApplicationsTest, AnApplicationIsTypedIntoOrLeftAloneWhereTheUserWantsIt) {
  writeTable("viewer = type\nbank = off\n");
  startQuorlo(libraryOf({{"brb", "Be right back,\n[~]"}}));
  Xterm viewer(desktop(), "viewer", "Viewer");
  type("a brb b");
  EXPECT_EQ(viewer.textOnceItIs("a Be right back,\n[~] b"), "a Be right back,\n[~] b");
  Xterm bank(desktop(), "bank", "Bank");
  type("a brb b");
  EXPECT_EQ(bank.textOnceItIs("a brb b"), "a brb b");
  Mousepad editor(desktop());
  type("a brb b");
  EXPECT_EQ(editor.textOnceItIs("a Be right back,\n[~] b"), "a Be right back,\n[~] b") << "Quorlo is awake";
}

}  // namespace
}  // namespace quorlo
