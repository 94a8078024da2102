// Taking an expansion back with Backspace, in real applications.
#include "desktop/quorlo_desktop_test.h"

namespace quorlo {
namespace {

class DesktopUndoTest : public QuorloDesktopTest {
 protected:
  void expectGivenBack(Application&& editor) {
    type("Well, sig ");
    keyboard().tap("BackSpace");
    type("no brb .");
    const std::string expected = "Well, sig no be right back .";
    EXPECT_EQ(editor.textOnceItIs(expected), expected);
  }
};

TEST_F(DesktopUndoTest, BackspaceGivesTheAbbreviationBackInEveryKindOfApplication) {
  startQuorlo();
  expectGivenBack(Xterm(desktop()));
  expectGivenBack(Mousepad(desktop()));
  expectGivenBack(Featherpad(desktop()));
}

TEST_F(DesktopUndoTest, LinesAndStylesAreErasedTooAndTheClipboardIsNotTouched) {
  startQuorlo(R"({"snippets": [
    {"text": {"string": "Dear 😀,\nAda!\n", "runs": [{"location": 9, "length": 3, "bold": true}]},
     "abbreviation": "hia"}]})");
  const auto holder = fillClipboard({"text:mine"});
  const auto mine = clipboard().substr(0, clipboard().find('\n') + 1);
  const auto editor = openRichEditor();
  type("x hia ");
  EXPECT_EQ(editor->textOnceItIs("x Dear 😀,\nAda!\n "), "x Dear 😀,\nAda!\n ");
  EXPECT_TRUE(waitUntil([&] { return clipboard().find(mine) != std::string::npos; }));
  const auto givenBack = clipboard();
  keyboard().tap("BackSpace");
  EXPECT_EQ(editor->textOnceItIs("x hia "), "x hia ");
  EXPECT_EQ(clipboard(), givenBack);
  keyboard().tap("BackSpace");
  EXPECT_EQ(editor->textOnceItIs("x hia"), "x hia");
}

TEST_F(DesktopUndoTest, AClickLeavesTheBackspaceToTheEditor) {
  startQuorlo(
      {{"QLDebugModeEnabled", "true"}, {"QLDebugEnabledDate", R"({"date":"2100-01-01T00:00:00.000Z"})"}});
  const auto editor = openRichEditor();
  type("brb ");
  ASSERT_EQ(editor->textOnceItIs("be right back "), "be right back ");
  editor->click();
  ASSERT_TRUE(waitUntil([&] { return quorlo().log().find("leftMouseDown") != std::string::npos; }));
  keyboard().tap("BackSpace");
  type(".");
  EXPECT_EQ(editor->textOnceItIs("be right back."), "be right back.");
}

TEST_F(DesktopUndoTest, TheAbbreviationIsTypedAsTheLayoutHasItWhateverIsLocked) {
  desktop().setLayout("de");
  startQuorlo(libraryOf({{"gr@Ü!", "Grüße"}, {"HI", "Hello"}}));
  const auto editor = openRichEditor();
  type("gr@Ü! ");
  keyboard().tap("BackSpace");
  EXPECT_EQ(editor->textOnceItIs("gr@Ü! "), "gr@Ü! ");
  for (const auto* key : {"Caps_Lock", "h", "i", "space", "BackSpace", "Caps_Lock"}) keyboard().tap(key);
  EXPECT_EQ(editor->textOnceItIs("gr@Ü! HI "), "gr@Ü! HI ");
  desktop().setLayout("us");
}

}  // namespace
}  // namespace quorlo
