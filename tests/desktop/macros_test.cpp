// Macros in real editors: keys between pieces, the clipboard, another snippet and the cursor's place.
#include "desktop/quorlo_desktop_test.h"

#include <chrono>
#include <cstdlib>
#include <string>

namespace quorlo {
namespace {

class DesktopMacrosTest : public QuorloDesktopTest {
 protected:
  void expectMacrosIn(FileEditor& editor) {
    keyboard().type("so mm !", std::chrono::milliseconds(10));
    const std::string expected = "so Dear Ada,\n\tI quote: copied (!) Charles ";
    EXPECT_EQ(editor.textOnceItIs(expected), expected);
    // More forms of the text do no harm.
    EXPECT_TRUE(waitUntil([&] { return clipboard().starts_with(mine_); })) << clipboard();
  }

  std::string mine_;  // the first form of what the clipboard holds
};

TEST_F(DesktopMacrosTest, TwoKeysTheClipboardAnotherSnippetAndTheCursorWorkTogether) {
  const auto holder = fillClipboard({"text:copied"});
  mine_ = clipboard().substr(0, clipboard().find('\n'));
  startQuorlo(libraryOf({{"mm",
                          "Dear Ada,%specialKey:value=return:specialKey%%specialKey:value=tab:specialKey%"
                          "I quote: %clipboard% (%cursor%) %snippet:abbreviation=who:snippet%"},
                         {"who", "Charles"}}));
  Mousepad mousepad(desktop());
  expectMacrosIn(mousepad);
  Featherpad featherpad(desktop());
  expectMacrosIn(featherpad);
}

TEST_F(DesktopMacrosTest, KeysAndTheCaretDoNotOvertakeThePiecesInAnEditorThatReadsLate) {
  const auto holder = fillClipboard({"text:copied"});
  startQuorlo(libraryOf({{"mm",
                          "one%specialKey:value=tab:specialKey%two%specialKey:value=return:specialKey%"
                          "three (%cursor%) %clipboard%"}}),
              {{"PasteBetweenSnippetPartsDelay", "0.05"}});
  const auto editor = openRichEditor(RichEditor::Kind::kLate);
  type("mm !");
  EXPECT_EQ(editor->textOnceItIs("one\ttwo\nthree (!) copied "), "one\ttwo\nthree (!) copied ");
}

// QUORLO_CARET_KEYS asks for another number of them.
TEST_F(DesktopMacrosTest, KeysTypedWhileTheCaretWalksFarArriveWhereItEnds) {
  const char* const asked = std::getenv("QUORLO_CARET_KEYS");
  const std::string rest(asked != nullptr ? std::stoul(asked) : 40'000, 'x');
  startQuorlo(libraryOf({{"far", "start%cursor%" + rest}}));
  const auto editor = openRichEditor();
  type("far ");
  keyboard().type("0123456789", std::chrono::milliseconds(100));
  const auto expected = "start0123456789" + rest + " ";
  EXPECT_TRUE(
      waitUntil([&] { return editor->text() == expected; }, static_cast<int>(rest.size() / 5000) * kPatience))
      << editor->text().substr(0, 60);
  EXPECT_EQ(quorlo().log().find("did not answer"), std::string::npos);
}

}  // namespace
}  // namespace quorlo
