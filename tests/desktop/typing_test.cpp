// How people type: fast, with rollover, with other layouts, with a finger still on Shift.
#include "desktop/quorlo_desktop_test.h"

#include <thread>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

class DesktopTypingTest : public QuorloDesktopTest {
 protected:
  void TearDown() override {
    QuorloDesktopTest::TearDown();
    if (layoutChanged_) desktop().setLayout("us");
  }
  void setLayout(const std::string& layout, const std::string& options = {}) {
    layoutChanged_ = true;
    desktop().setLayout(layout, options);
  }

 private:
  bool layoutChanged_ = false;
};

TEST_F(DesktopTypingTest, NothingIsLostOrOutOfOrderWhenTypingFastAcrossExpansions) {
  const std::string typed = "the quick sig fox brb jumps over sig the lazy brb dog; twelve more words. ";
  const std::string arrived =
      "the quick Kind regards, Ada fox be right back jumps over Kind regards, Ada the lazy be right back dog; "
      "twelve more words. ";
  startQuorlo({{"PasteBetweenSnippetPartsDelay", "0.2"}});
  Mousepad mousepad(desktop());
  keyboard().type(typed + typed, milliseconds(10));
  EXPECT_EQ(mousepad.textOnceItIs(arrived + arrived), arrived + arrived);
  Featherpad featherpad(desktop());
  keyboard().type(typed, milliseconds(10));
  EXPECT_EQ(featherpad.textOnceItIs(arrived), arrived);
  Xterm xterm(desktop());
  keyboard().type(typed + typed);  // as fast as the server takes them
  EXPECT_EQ(xterm.textOnceItIs(arrived + arrived), arrived + arrived);
}

TEST_F(DesktopTypingTest, RollingKeysAndTwoKeyboardsKeepTheirOrder) {
  startQuorlo(kLastSymbol);
  auto editor = openRichEditor();
  keyboard().typeRolling("hello sig and brb bye", milliseconds(10));
  EXPECT_EQ(editor->textOnceItIs("hello Kind regards, Ada and be right back bye"),
            "hello Kind regards, Ada and be right back bye");
  type(" si");
  EXPECT_TRUE(waitUntil([&] { return editor->text().ends_with(" si"); }));
  desktop().secondKeyboard().type("g!");
  EXPECT_EQ(editor->textOnceItIs("hello Kind regards, Ada and be right back bye Kind regards, Ada!"),
            "hello Kind regards, Ada and be right back bye Kind regards, Ada!");
}

TEST_F(DesktopTypingTest, AKeyHeldAcrossAnExpansionNeitherRepeatsNorSticks) {
  runProgram({.words = {"xset", "r", "rate", "150", "50"}, .variables = desktop().variables(), .output = {}});
  startQuorlo(kLastSymbol);
  const auto editor = openRichEditor();  // is read without pressing keys
  type("si");
  keyboard().press("g");
  std::this_thread::sleep_for(milliseconds(500));  // a slow finger: beyond the delay of the auto-repeat
  keyboard().release("g");
  type(" ok");
  EXPECT_EQ(editor->textOnceItIs("Kind regards, Ada ok"), "Kind regards, Ada ok");
  keyboard().press("x");
  EXPECT_TRUE(waitUntil([&] { return editor->text().ends_with("xxx"); }))
      << "other keys repeat as ever, not: " << editor->text();
}

TEST_F(DesktopTypingTest, AHeldShiftDoesNotLeakIntoTheExpansionAndStaysHeldAfterIt) {
  startQuorlo(libraryOf({{"SIG", "Kind regards, Ada"}, {"sig", "wrong"}}), kLastSymbol);
  for (const bool terminal : {false, true}) {
    std::unique_ptr<Application> editor;
    if (terminal) {
      editor = std::make_unique<Xterm>(desktop());
    } else {
      editor = std::make_unique<Featherpad>(desktop());
    }
    keyboard().press("Shift");
    for (const char* key : {"s", "i", "g", "x", "y"}) keyboard().tap(keyboard().keycodeOf(key));
    keyboard().release("Shift");
    type("z");
    EXPECT_EQ(editor->textOnceItIs("Kind regards, AdaXYz"), "Kind regards, AdaXYz");
  }
}

TEST_F(DesktopTypingTest, AGermanLayoutTypesAndExpandsWithUmlautsAltGrAndDeadKeys) {
  setLayout("de");
  startQuorlo(
      libraryOf({{"grüß", "Mit freundlichen Grüßen"}, {"@z", "ada@example.org"}, {"€é", "fünf Euro"}}),
      kLastSymbol);
  const std::string typed = "zyÄ {grüß} @z €é~";
  const std::string expected = "zyÄ {Mit freundlichen Grüßen} ada@example.org fünf Euro~";
  Mousepad mousepad(desktop());
  type(typed);
  EXPECT_EQ(mousepad.textOnceItIs(expected), expected);
  Xterm xterm(desktop());
  type(typed);
  EXPECT_EQ(xterm.textOnceItIs(expected), expected);
  // Qt inserts a composed character before ordinary ones that it has read in the same turn: no dead keys
  // without a pause there.
  Featherpad featherpad(desktop());
  type("zyÄ {grüß} @z~");
  const std::string inFeatherpad = "zyÄ {Mit freundlichen Grüßen} ada@example.org~";
  EXPECT_EQ(featherpad.textOnceItIs(inFeatherpad), inFeatherpad);
}

TEST_F(DesktopTypingTest, ThePasteChordStaysOneWhenTheLayoutChangesWhileQuorloRuns) {
  setLayout("us(dvorak)");
  startQuorlo(libraryOf({{"sig", "Kind regards, Ada"}, {"шд", "До свидания"}}));
  const auto editor = openRichEditor();  // is read without pressing keys
  std::string expected;
  for (const auto* layout : {"us(dvorak)", "us", "fr(bepo)", "de(neo)", "ru", "us"}) {
    const bool isRussian = std::string_view(layout) == "ru";
    setLayout(layout);
    type(isRussian ? "шд " : "sig ");
    expected += isRussian ? "До свидания " : "Kind regards, Ada ";
    ASSERT_EQ(editor->textOnceItIs(expected), expected) << layout;
  }
}

TEST_F(DesktopTypingTest, DeadKeysAndComposeGiveTheComposedCharacter) {
  setLayout("us(intl)", "compose:ralt");
  startQuorlo(libraryOf({{"né", "born"}, {"œuv", "work"}}), kLastSymbol);
  Mousepad editor(desktop());
  type("né. ");
  keyboard().tap("Multi_key");
  type("oeuv. ê");
  EXPECT_EQ(editor.textOnceItIs("born. work. ê"), "born. work. ê");
}

TEST_F(DesktopTypingTest, CapsLockAndChordsBehaveAsWithoutQuorlo) {
  startQuorlo(kLastSymbol);
  Mousepad editor(desktop());
  keyboard().tap("Caps_Lock");
  type("sig");
  keyboard().tap("Caps_Lock");
  EXPECT_EQ(editor.textOnceItIs("SIG"), "SIG");
  keyboard().tap("Ctrl+a");
  keyboard().tap("Ctrl+x");
  type("si");
  keyboard().tap("Ctrl+v");
  type("g brb");
  EXPECT_EQ(editor.textOnceItIs("siSIGg be right back"), "siSIGg be right back");
}

}  // namespace
}  // namespace quorlo
