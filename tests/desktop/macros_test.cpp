// Macros in real editors: keys between pieces, the clipboard, another snippet and the cursor's place.
#include "desktop/quorlo_desktop_test.h"

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

}  // namespace
}  // namespace quorlo
