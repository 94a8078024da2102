// What an expansion puts on the clipboard, and what it gives back.
#include "desktop/quorlo_desktop_test.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <sstream>

namespace quorlo {
namespace {

// What of a description must be back: everything but the forms of an image that are derived from the first.
std::vector<std::string> essentials(const std::string& description) {
  std::vector<std::string> lines;
  std::istringstream stream(description);
  for (std::string line; std::getline(stream, line);) {
    if (!line.starts_with("image/") || line.starts_with("image/png ")) lines.push_back(line);
  }
  return lines;
}

class DesktopClipboardTest : public QuorloDesktopTest {
 protected:
  // Waits until the clipboard holds again what it held; more forms of it do no harm.
  void expectBack(const std::string& before) {
    std::string after;
    const auto isBack = [&] {
      after = clipboard();
      return std::ranges::all_of(
          essentials(before), [&](const auto& line) { return after.find(line + "\n") != std::string::npos; });
    };
    EXPECT_TRUE(waitUntil(isBack)) << "before:\n" << before << "after:\n" << after;
  }

  // Expands once in the editor.
  void expectRestored(Application& editor, const std::vector<std::string>& contents) {
    const auto holder = fillClipboard(contents);
    const auto before = clipboard();
    const auto expected = editor.text() + "be right back ";
    editor.activate();
    type("brb ");
    EXPECT_EQ(editor.textOnceItIs(expected), expected);
    expectBack(before);
  }

  // Stops a program outside the moments in which it has the X server for itself: there it would stop the
  // whole desktop.
  void stop(const ChildProcess& program) {
    const auto serverAnswers = [this] {
      auto client = desktop().start({"xdpyinfo"});
      return waitUntil([&] { return !client.running(); }, std::chrono::milliseconds(1000));
    };
    program.signal(SIGSTOP);
    for (int i = 0; i < 20 && !serverAnswers(); ++i) {
      program.signal(SIGCONT);
      waitUntil(serverAnswers);
      program.signal(SIGSTOP);
    }
  }
};

TEST_F(DesktopClipboardTest, PicturesTextsAndLargeDataAreBackAfterAnExpansion) {
  startQuorlo();
  auto editor = openRichEditor();
  expectRestored(*editor, {"text:Grüße"});
  expectRestored(*editor, {"picture", "html:<img src='x'>", "text:a picture"});
  expectRestored(*editor, {"image"});
  expectRestored(*editor, {"data:application/x-large:10000000", "text:ten megabytes"});
}

// Its owner takes seconds to encode it.
TEST_F(DesktopClipboardTest, APhotographOfAWholeScreenIsBackAfterAnExpansion) {
  startQuorlo();
  Mousepad editor(desktop());
  const auto holder = fillClipboard({"photo:3840x2160"});
  type("brb x");
  EXPECT_EQ(editor.textOnceItIs("be right back x"), "be right back x");
  std::string after;
  const auto isBack = [&] { return (after = clipboard()).ends_with(holder->offers()); };
  EXPECT_TRUE(waitUntil(isBack, 6 * kPatience)) << "pixels before:\n"
                                                << holder->offers() << "after:\n"
                                                << after;
}

TEST_F(DesktopClipboardTest, AnEditorThatHangsGetsTheSnippetAndNotThePassword) {
  startQuorlo();
  const auto holder = fillClipboard({"text:MY-PASSWORD"});
  Mousepad editor(desktop());
  type("y");
  EXPECT_EQ(editor.textOnceItIs("y"), "y");
  stop(editor.process());
  type(" brb ");
  // Longer than typed keys are held and the piece stays on the clipboard.
  const auto later = std::chrono::steady_clock::now() + std::chrono::seconds(4);
  waitUntil([&] { return std::chrono::steady_clock::now() > later; });
  editor.process().signal(SIGCONT);
  EXPECT_EQ(editor.textOnceItIs("y be right back "), "y be right back ");
  keyboard().tap("Ctrl+v");
  EXPECT_EQ(editor.textOnceItIs("y be right back MY-PASSWORD"), "y be right back MY-PASSWORD");
}

TEST_F(DesktopClipboardTest, AnotherProcessMayReadTheClipboardForAProgram) {
  startQuorlo();
  const auto holder = fillClipboard({"text:mine"});
  auto editor = openRichEditor(RichEditor::Kind::kRelaying);
  std::string expected;
  for (int i = 0; i < 3; ++i) {
    type("brb x");
    expected += "be right back x";
    EXPECT_EQ(editor->textOnceItIs(expected), expected);
  }
  const auto isBack = [&] { return clipboard().find("text/plain 4 ") != std::string::npos; };
  EXPECT_TRUE(waitUntil(isBack)) << clipboard();
}

TEST_F(DesktopClipboardTest, TheClipboardIsBackAfterATerminalPastedToo) {
  startQuorlo();
  Xterm xterm(desktop());
  expectRestored(xterm, {"text:kept"});
}

TEST_F(DesktopClipboardTest, ExpansionsInQuickSuccessionGiveBackWhatTheUserHad) {
  startQuorlo({{"PasteBetweenSnippetPartsDelay", "0.2"}});
  const auto holder = fillClipboard({"text:mine"});
  const auto before = clipboard();
  Mousepad editor(desktop());
  type("brb sig brb sig ");
  const std::string expected = "be right back Kind regards, Ada be right back Kind regards, Ada ";
  EXPECT_EQ(editor.textOnceItIs(expected), expected);
  expectBack(before);
}

TEST_F(DesktopClipboardTest, WhatIsCopiedRightAfterAnExpansionStays) {
  startQuorlo({{"PasteBetweenSnippetPartsDelay", "0.2"}});
  const auto holder = fillClipboard({"text:older"});
  Mousepad editor(desktop());
  type("word brb ");
  keyboard().tap("Ctrl+a");
  keyboard().tap("Ctrl+c");  // held until the piece has been pasted
  keyboard().tap("End");
  type("sig x");  // once its piece is on the clipboard, only the giving back can bring the copy there again
  const std::string expected = "word be right back Kind regards, Ada x";
  EXPECT_EQ(editor.textOnceItIs(expected), expected);
  EXPECT_TRUE(waitUntil([&] { return clipboard().find("text/plain 19 ") != std::string::npos; }))
      << clipboard();
}

TEST_F(DesktopClipboardTest, WithoutRestorationThePieceStaysOnTheClipboard) {
  startQuorlo({{"RestorePateboardItems", "false"}});
  const auto holder = fillClipboard({"text:mine"});
  Featherpad editor(desktop());
  type("brb x");
  EXPECT_EQ(editor.textOnceItIs("be right back x"), "be right back x");
  keyboard().tap("Ctrl+v");
  EXPECT_EQ(editor.textOnceItIs("be right back xbe right back "), "be right back xbe right back ");
}

TEST_F(DesktopClipboardTest, AutoPasteOffLeavesThePieceForTheUserToPaste) {
  startQuorlo({{"AutoPasteEnabled", "false"}, {"ShowNotificationForExpension", "false"}});
  Mousepad editor(desktop());
  type("brb x");
  EXPECT_EQ(editor.textOnceItIs("brbx"), "brbx");  // the delimiter is part of the piece
  keyboard().tap("Ctrl+v");
  EXPECT_EQ(editor.textOnceItIs("brbxbe right back "), "brbxbe right back ");
}

}  // namespace
}  // namespace quorlo
