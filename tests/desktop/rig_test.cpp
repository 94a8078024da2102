// The instruments themselves: what a virtual keyboard types must arrive before anything else is tested with
// it.
#include "virtual_desktop/applications.h"
#include "virtual_desktop/wait.h"
#include "virtual_desktop/window_picture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace quorlo {
namespace {

class VirtualDesktopTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { desktop_ = std::make_unique<VirtualDesktop>(); }
  static void TearDownTestSuite() { desktop_.reset(); }
  void TearDown() override { desktop_->setLayout("us"); }

  static std::unique_ptr<VirtualDesktop> desktop_;
};

std::unique_ptr<VirtualDesktop> VirtualDesktopTest::desktop_;

TEST_F(VirtualDesktopTest, KeysArriveInATerminalAnEditorOfEachToolkitAndTheRichEditor) {
  const std::string text = "The quick brown fox, 42 times (a@b.c) ~ {x}";
  Xterm xterm(*desktop_);
  desktop_->keyboard().type(text);
  EXPECT_EQ(xterm.textOnceItIs(text), text);
  Mousepad mousepad(*desktop_);
  desktop_->keyboard().type(text);
  EXPECT_EQ(mousepad.textOnceItIs(text), text);
  Featherpad featherpad(*desktop_);
  desktop_->secondKeyboard().type(text);
  EXPECT_EQ(featherpad.textOnceItIs(text), text);
  RichEditor rich(*desktop_, RICH_EDITOR, RichEditor::Kind::kChat);
  desktop_->keyboard().type(text + "\nsecond");
  EXPECT_EQ(rich.textOnceItIs("second"), "second");
  EXPECT_EQ(rich.sent(), text + "\n");
  EXPECT_NE(rich.html().find("second"), std::string::npos);
}

TEST_F(VirtualDesktopTest, OtherLayoutsTypeTheirOwnCharactersWithAltGrAndDeadKeys) {
  Xterm xterm(*desktop_);
  desktop_->setLayout("de");
  desktop_->keyboard().type("zyäöüß€@{}éÊ");
  EXPECT_EQ(xterm.textOnceItIs("zyäöüß€@{}éÊ"), "zyäöüß€@{}éÊ");
  EXPECT_THROW(desktop_->keyboard().type("ю"), std::runtime_error);
}

TEST_F(VirtualDesktopTest, ErasingAndRollingKeysKeepTheirOrder) {
  Xterm xterm(*desktop_);
  desktop_->keyboard().typeRolling("hallo", std::chrono::milliseconds(1));
  desktop_->keyboard().tap("BackSpace");
  desktop_->keyboard().press("Shift");
  desktop_->keyboard().tap("a");
  desktop_->keyboard().release("Shift");
  EXPECT_EQ(xterm.textOnceItIs("hallA"), "hallA");
}

TEST_F(VirtualDesktopTest, PicturesOfWindowsTellALetterFromACaret) {
  const std::string text = "Hello Ada";
  Mousepad typed(*desktop_);
  desktop_->keyboard().type(text);
  EXPECT_EQ(typed.textOnceItIs(text), text);
  const auto pictureOf = [](Mousepad& editor) {
    editor.activate();
    return WindowPicture::of(desktop_->connection(), editor.window());
  };
  const auto waitUntilAlike = [&](Mousepad& sample) {
    return waitUntil([&] { return differingColumns(pictureOf(typed), pictureOf(sample)) <= 4; });
  };
  Mousepad same(*desktop_, "same.txt", text);
  EXPECT_TRUE(waitUntilAlike(same));
  const auto before = pictureOf(typed);
  desktop_->keyboard().type("m");
  Mousepad more(*desktop_, "more.txt", text + "m");
  EXPECT_TRUE(waitUntilAlike(more));
  EXPECT_GT(differingColumns(before, pictureOf(typed)), 4);
}

TEST_F(VirtualDesktopTest, AClickMovesTheFocusToTheWindowUnderThePointer) {
  Xterm first(*desktop_, "first");
  RichEditor second(*desktop_, RICH_EDITOR);
  first.click();
  EXPECT_TRUE(waitUntil([&] { return desktop_->windows().active() == first.window(); }));
  second.activate();
  EXPECT_EQ(desktop_->windows().active(), second.window());
}

TEST_F(VirtualDesktopTest, TheClipboardShowsWhatAnotherProgramOffers) {
  const ClipboardHolder holder(
      *desktop_, CLIPBOARD_HOLDER,
      {"picture", "html:<b>bold</b>", "text:bold", "data:application/x-big:3000000"});
  EXPECT_EQ(ClipboardHolder::show(*desktop_, CLIPBOARD_HOLDER), holder.offers());
}

TEST_F(VirtualDesktopTest, NothingIsLeftWhenADesktopEnds) {
  auto another = std::make_unique<VirtualDesktop>();
  EXPECT_NE(another->display(), desktop_->display());
  const auto directory = another->directory();
  auto xterm = another->start({"xterm"});
  another->windows().waitForWindowOf(xterm.pid());
  another.reset();
  EXPECT_FALSE(std::filesystem::exists(directory));
  EXPECT_TRUE(waitUntil([&] { return !xterm.running(); }));
}

}  // namespace
}  // namespace quorlo
