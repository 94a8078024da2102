// Places where what is typed must arrive as typed: lock screens, prompts, password fields, input methods.
#include "desktop/quorlo_desktop_test.h"

#include <xcb/xcb.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace quorlo {
namespace {

class DesktopTypingContextTest : public QuorloDesktopTest {};

// Another program that has the keyboard for itself until Escape is typed (tests/desktop/apps).
class KeyboardTaker {
 public:
  KeyboardTaker(VirtualDesktop& desktop, const std::string& kind)
      : file_(desktop.directory() / "taken.txt"), process_(start(desktop, kind)) {
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(file_); })) << kind;
  }

  std::string typedOnceItIs(const std::string& expected) const {
    std::string seen;
    waitUntil([&] {
      std::ifstream in(file_);
      seen = {std::istreambuf_iterator<char>(in), {}};
      return seen == expected;
    });
    return seen;
  }

  void waitForEnd() { process_.waitForEnd(std::chrono::seconds(10)); }

 private:
  ChildProcess start(VirtualDesktop& desktop, const std::string& kind) const {
    std::filesystem::remove(file_);
    return desktop.start({KEYBOARD_TAKER, file_, kind});
  }

  std::filesystem::path file_;
  ChildProcess process_;
};

TEST_F(DesktopTypingContextTest, AProgramThatTakesTheKeyboardSeesWhatWasTypedAndNothingElse) {
  startQuorlo(kLastSymbol);
  auto editor = openRichEditor();
  std::string expected;
  for (const std::string kind : {"--locker", "--prompt"}) {
    type("br");
    KeyboardTaker taker(desktop(), kind);
    type("pasbrb1");
    EXPECT_EQ(taker.typedOnceItIs("pasbrb1"), "pasbrb1") << kind;
    keyboard().tap("Escape");
    taker.waitForEnd();
    // Neither what was typed there nor what was typed before joins what is typed now.
    editor->activate();
    type("b brb\n");
    expected += "brb be right back\n";
    EXPECT_EQ(editor->textOnceItIs(expected), expected) << kind;
  }
}

TEST_F(DesktopTypingContextTest, AKeyboardThatWasTakenBeforeQuorloStartedIsSeenToBeTaken) {
  auto editor = openRichEditor();
  KeyboardTaker taker(desktop(), "--locker");
  startQuorlo(kLastSymbol);
  type("pasbrb1");
  EXPECT_EQ(taker.typedOnceItIs("pasbrb1"), "pasbrb1");
  keyboard().tap("Escape");
  taker.waitForEnd();
  type("brb");
  EXPECT_EQ(editor->textOnceItIs("be right back"), "be right back");
}

TEST_F(DesktopTypingContextTest, APopupOfTheProgramItselfTakesTheKeyboardAndAbbreviationsExpand) {
  startQuorlo(kLastSymbol);
  auto editor = openRichEditor(RichEditor::Kind::kCompleting);
  type("say brb, brb");
  const std::string expanded = "say be right back, be right back";
  EXPECT_EQ(editor->textOnceItIs(expanded), expanded);
}

TEST_F(DesktopTypingContextTest, AHotKeyOfAnotherProgramTakesTheKeyboardForAMomentOnly) {
  startQuorlo(kLastSymbol);
  auto editor = openRichEditor();
  auto* const other = desktop().connection();
  const auto root = xcb_setup_roots_iterator(xcb_get_setup(other)).data->root;
  constexpr xcb_keycode_t kF9 = 75;
  xcb_grab_key(other, 0, root, XCB_MOD_MASK_ANY, kF9, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  xcb_flush(other);
  for (int i = 0; i < 5; ++i) {
    keyboard().tap("F9");
    type("brb,");
  }
  xcb_ungrab_key(other, kF9, root, XCB_MOD_MASK_ANY);
  xcb_flush(other);
  std::string expected;
  for (int i = 0; i < 5; ++i) expected += "be right back,";
  EXPECT_EQ(editor->textOnceItIs(expected), expected);
}

}  // namespace
}  // namespace quorlo
