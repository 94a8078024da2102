// Snippets whose fields the user fills in, in a window between typing and insertion.
#include "desktop/quorlo_desktop_test.h"

#include <sstream>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

class DesktopFillInTest : public QuorloDesktopTest {
 protected:
  void startQuorloWithFields() {
    startQuorlo(
        libraryOf({{"hey", "Hello %textfield:name=Name:default=Ada:textfield%!"},
                   {"odr",
                    "%textfield:name=Who:textfield% wants %options:name=What:default=0:name0=tea:name1="
                    "coffee:options%%specialKey:value=return:specialKey%%clipboard%, %cursor%please"},
                   {"brb", "be right back"}}));
  }
  bool windowIsOpen() {
    return desktop().windows().titleOf(desktop().windows().active()) == "Fill in Snippet";
  }
  // More forms of the text do no harm.
  bool clipboardIsMine() {
    const auto now = clipboard();
    std::istringstream lines(mine_);
    for (std::string line; std::getline(lines, line);) {
      if (now.find(line + "\n") == std::string::npos) return false;
    }
    return true;
  }
  void waitForWindow() {
    ASSERT_TRUE(waitUntil([&] { return windowIsOpen(); }));
  }

  std::string mine_;  // what the clipboard holds before
};

TEST_F(DesktopFillInTest, WhatIsFilledInArrivesInTheEditorAndWhatIsTypedNextComesAfterIt) {
  startQuorloWithFields();
  const auto holder = fillClipboard({"text:mine"});
  mine_ = clipboard();
  const auto check = [&](Application& editor) {
    keyboard().type("Hi. hey Grace", milliseconds(10));  // the name while the window is still opening
    waitForWindow();
    keyboard().type("\n And brb ", milliseconds(20));
    const std::string expected = "Hi. Hello Grace!  And be right back ";
    EXPECT_EQ(editor.textOnceItIs(expected), expected);
    EXPECT_TRUE(waitUntil([&] { return clipboardIsMine(); }));
    editor.process().stop();
  };
  Mousepad mousepad(desktop());
  check(mousepad);
  Featherpad featherpad(desktop());
  check(featherpad);
  Xterm xterm(desktop());
  check(xterm);
}

TEST_F(DesktopFillInTest, EveryFieldIsReachedByTabAndNothingExpandsInTheWindow) {
  startQuorloWithFields();
  const auto holder = fillClipboard({"text:mine"});
  mine_ = clipboard();
  Mousepad editor(desktop());
  type("odr ");
  waitForWindow();
  keyboard().type("brb Ada", milliseconds(10));
  keyboard().tap("Tab");
  keyboard().tap("Down");
  keyboard().tap("Return");
  const std::string expected = "brb Ada wants coffee\nmine, please ";
  EXPECT_EQ(editor.textOnceItIs(expected), expected);
  EXPECT_TRUE(waitUntil([&] { return !windowIsOpen(); }));
}

TEST_F(DesktopFillInTest, EscapeLeavesEverythingAsItWasAndGivesTheKeyboardBack) {
  startQuorloWithFields();
  const auto holder = fillClipboard({"text:mine"});
  mine_ = clipboard();
  Featherpad editor(desktop());
  type("Hi hey ");
  waitForWindow();
  keyboard().type("Grace", milliseconds(10));
  keyboard().tap("Escape");
  EXPECT_TRUE(waitUntil([&] { return desktop().windows().active() == editor.window(); }));
  keyboard().type(" brb ", milliseconds(20));
  EXPECT_EQ(editor.textOnceItIs("Hi hey be right back "), "Hi hey be right back ");
  EXPECT_TRUE(waitUntil([&] { return clipboardIsMine(); }));
}

TEST_F(DesktopFillInTest, WhenTheEditorIsGoneTheTextCanBeCopied) {
  startQuorloWithFields();
  const auto holder = fillClipboard({"text:mine"});
  mine_ = clipboard();
  Mousepad editor(desktop());
  {
    Xterm xterm(desktop());
    type("hey ");
    waitForWindow();
  }
  keyboard().type("Grace\n", milliseconds(10));
  EXPECT_TRUE(waitUntil([&] { return quorlo().log().find("WARNING: #fi7Tgn") != std::string::npos; }));
  EXPECT_TRUE(clipboardIsMine());
  waitForWindow();
  keyboard().tap("Return");
  EXPECT_TRUE(waitUntil([&] { return !windowIsOpen(); }));
  editor.activate();
  keyboard().tap("Ctrl+v");
  EXPECT_EQ(editor.textOnceItIs("Hello Grace! "), "Hello Grace! ");
  type("brb ");
  EXPECT_EQ(editor.textOnceItIs("Hello Grace! be right back "), "Hello Grace! be right back ");
}

}  // namespace
}  // namespace quorlo
