// What makes an abbreviation expand, in real applications.
#include "desktop/quorlo_desktop_test.h"

namespace quorlo {
namespace {

class DesktopTriggerTest : public QuorloDesktopTest {
 protected:
  static constexpr int kSpace = 0x1, kTab = 0x2, kReturn = 0x4, kComma = 0x2000, kFullStop = 0x10000;

  static StoredSettings delimiters(int set, bool removed = false) {
    return {{"AbbreviationDelimiterKey", std::to_string(set)},
            {"RemoveTriggerKey", removed ? "true" : "false"}};
  }
};

TEST_F(DesktopTriggerTest, ADelimiterExpandsTheAbbreviationBeforeItInEveryKindOfApplication) {
  startQuorlo();
  const std::string expected = "Well, Kind regards, Ada be right back .";
  Xterm xterm(desktop());
  type("Well, sig brb .");
  EXPECT_EQ(xterm.textOnceItIs(expected), expected);
  Mousepad mousepad(desktop());
  type("Well, sig brb .");
  EXPECT_EQ(mousepad.textOnceItIs(expected), expected);
  Featherpad featherpad(desktop());
  type("Well, sig brb .");
  EXPECT_EQ(featherpad.textOnceItIs(expected), expected);
}

TEST_F(DesktopTriggerTest, TheLastSymbolExpandsAndNeverReachesTheApplication) {
  startQuorlo(kLastSymbol);
  Xterm xterm(desktop());
  type("a sig!");
  EXPECT_EQ(xterm.textOnceItIs("a Kind regards, Ada!"), "a Kind regards, Ada!");
  EXPECT_EQ(xterm.bytes().find('g'), xterm.bytes().find("gards")) << "the completing key must be swallowed";
  Mousepad mousepad(desktop());
  type("a sig!");
  EXPECT_EQ(mousepad.textOnceItIs("a Kind regards, Ada!"), "a Kind regards, Ada!");
}

TEST_F(DesktopTriggerTest, EveryChosenDelimiterExpandsAndOnlyThose) {
  startQuorlo(delimiters(kTab | kComma | kFullStop));
  Mousepad editor(desktop());
  const std::string expected = "Kind regards, Ada,be right back.Kind regards, Ada\tsig brb!be right back.";
  type("sig,brb.sig\tsig brb!brb.");
  EXPECT_EQ(editor.textOnceItIs(expected), expected);
}

TEST_F(DesktopTriggerTest, AChordExpandsNothingAndReachesTheApplication) {
  startQuorlo(delimiters(kSpace | kTab | kReturn));
  const auto editor = openRichEditor();
  for (const auto* chord : {"Ctrl+space", "Alt+space", "Super+space", "Ctrl+Tab", "Super+Return"}) {
    type("sig");
    keyboard().tap(chord);
    type(",");
  }
  type("sig");
  keyboard().tap("Shift+Return");
  type("a");
  keyboard().tap("KP_Enter");
  type("brb ");
  const std::string expected = "sig,sig ,sig ,sig,sig,sig\na\nbe right back ";
  EXPECT_EQ(editor->textOnceItIs(expected), expected);
}

TEST_F(DesktopTriggerTest, TheDelimiterIsDroppedWhenTheSettingSaysSo) {
  startQuorlo(delimiters(kSpace | kFullStop, true));
  Featherpad editor(desktop());
  type("sig brb.x");
  EXPECT_EQ(editor.textOnceItIs("Kind regards, Adabe right backx"), "Kind regards, Adabe right backx");
}

TEST_F(DesktopTriggerTest, AReturnThatTriggersDoesNotSendTheMessage) {
  startQuorlo(delimiters(kReturn, true));
  auto chat = openRichEditor(RichEditor::Kind::kChat);
  type("sig\n");
  EXPECT_EQ(chat->textOnceItIs("Kind regards, Ada"), "Kind regards, Ada");
  EXPECT_EQ(chat->sent(), "");
  type("\n");
  EXPECT_EQ(chat->textOnceItIs(""), "");
  EXPECT_EQ(chat->sent(), "Kind regards, Ada\n");
}

TEST_F(DesktopTriggerTest, TheEndOfAWordExpandsOnlyWhenTheSettingSaysSo) {
  Mousepad editor(desktop());
  startQuorlo();
  type("xsig ");
  EXPECT_EQ(editor.textOnceItIs("xKind regards, Ada "), "xKind regards, Ada ");
  startQuorlo({{"ExpandAbbreviationWithinWord", "false"}});
  type("xsig brb .");
  const std::string expected = "xKind regards, Ada xsig be right back .";
  EXPECT_EQ(editor.textOnceItIs(expected), expected);
}

TEST_F(DesktopTriggerTest, CorrectingALetterWithBackspaceStillExpands) {
  startQuorlo(kLastSymbol);
  Xterm xterm(desktop());
  type("sip");
  keyboard().tap("BackSpace");
  type("g.");
  EXPECT_EQ(xterm.textOnceItIs("Kind regards, Ada."), "Kind regards, Ada.");
}

TEST_F(DesktopTriggerTest, AnArrowKeyOrAClickBetweenTwoLettersPreventsTheExpansion) {
  startQuorlo({{"AbbreviationsTriggerType", "1"},
               {"QLDebugModeEnabled", "true"},
               {"QLDebugEnabledDate", R"({"date":"2100-01-01T00:00:00.000Z"})"}});
  const auto editor = openRichEditor();  // is read without pressing keys, which would reset the typing
  type("si");
  keyboard().tap("Left");
  keyboard().tap("Right");
  type("g,si");
  keyboard().tap("End");
  type("g,");
  type("\nsi");
  // Keys and clicks come from two devices: the click must not overtake the keys.
  EXPECT_EQ(editor->textOnceItIs("sig,sig,\nsi"), "sig,sig,\nsi");
  editor->click();
  EXPECT_TRUE(waitUntil([&] { return quorlo().log().find("leftMouseDown") != std::string::npos; }));
  type("g,brb");
  EXPECT_EQ(editor->textOnceItIs("sig,sig,\nsig,be right back"), "sig,sig,\nsig,be right back");
}

TEST_F(DesktopTriggerTest, AnotherWindowBetweenTwoLettersPreventsTheExpansion) {
  startQuorlo(kLastSymbol);
  Featherpad second(desktop());
  type("x");  // an editor that has taken a key does not come to the front by itself any more
  EXPECT_EQ(second.textOnceItIs("x"), "x");
  Xterm first(desktop(), "first");
  type("si");
  EXPECT_EQ(first.textOnceItIs("si"), "si");
  second.activate();
  type("g, brb");
  EXPECT_EQ(second.textOnceItIs("xg, be right back"), "xg, be right back");
  first.activate();
  type("g brb");
  EXPECT_EQ(first.textOnceItIs("sig be right back"), "sig be right back");
}

}  // namespace
}  // namespace quorlo
