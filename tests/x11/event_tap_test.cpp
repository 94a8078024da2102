// The tap on a real X server: a virtual keyboard types, a window writes down what arrives.
#include "x11/keyboard_desktop.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

class EventTapTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    desktop_ = std::make_unique<VirtualDesktop>();
    window_ = std::make_unique<KeyWindow>(*desktop_);
  }
  static void TearDownTestSuite() {
    window_.reset();
    desktop_.reset();
  }
  void SetUp() override { window.clear(); }
  void TearDown() override { keys().releaseAll(); }

  VirtualKeyboard& keys() { return desktop_->keyboard(); }
  // What the window has once it is that, or what it has after a while.
  std::string typedOnceItIs(const std::string& text) {
    keyboard.pumpUntil([&] { return window.typed() == text; }, std::chrono::milliseconds(3000));
    return window.typed();
  }

  static std::unique_ptr<VirtualDesktop> desktop_;
  static std::unique_ptr<KeyWindow> window_;
  KeyWindow& window = *window_;
  KeyboardDesktop keyboard{*desktop_};
};

std::unique_ptr<VirtualDesktop> EventTapTest::desktop_;
std::unique_ptr<KeyWindow> EventTapTest::window_;

TEST_F(EventTapTest, KeysPassWithNothingLost) {
  ASSERT_TRUE(keyboard.startTap());
  keys().type("Hello");
  EXPECT_EQ(typedOnceItIs("<Shift_L>Hello"), "<Shift_L>Hello");
  EXPECT_EQ(keyboard.seenText, "Hello");
}

TEST_F(EventTapTest, ASwallowedKeyNeverArrivesNorRepeats) {
  ASSERT_TRUE(keyboard.startTap());
  keyboard.judge = [](const KeyDownEvent& event) {
    return event.characters == u"x" ? TapVerdict::swallow : TapVerdict::pass;
  };
  keys().press("a");
  keys().press("x");
  keys().release("a");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.log() == "a^a"; }));
  // longer than the server waits before it repeats
  EXPECT_FALSE(keyboard.pumpUntil([&] { return window.log() != "a^a"; }, std::chrono::milliseconds(900)));
  keys().release("x");
  keys().type("b");
  EXPECT_EQ(typedOnceItIs("ab"), "ab") << keyboard.seenText << " " << window.log();
}

TEST_F(EventTapTest, AHeldKeyRepeatsAsWithoutATapAndIsReportedAsTyped) {
  ASSERT_TRUE(keyboard.startTap());
  keys().press("a");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed().size() > 5; }));
  keys().release("a");
  keys().type("b");
  ASSERT_TRUE(keyboard.pumpUntil([&] { return window.typed().ends_with("b") && keyboard.seenText == "ab"; }));
  const auto repeats = window.typed().size() - 2;
  const auto reported = keyboard.seen.size() - 2;
  EXPECT_NEAR(static_cast<double>(repeats), static_cast<double>(reported), 2.0);
}

}  // namespace
}  // namespace quorlo
