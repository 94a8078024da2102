// Other programs change the keyboard while it is watched: what is typed is read as applications read it, and
// the keyboards are left as those programs wanted them.
#include "x11/connection/xcb_xkb.h"
#include "x11/keyboard_desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <thread>

namespace quorlo {
namespace {

class KeyboardChangesTest : public KeyboardTest {
 protected:
  void SetUp() override {
    desktop_->setLayout("us");
    window.clear();
    ASSERT_TRUE(keyboard.startTap());
  }
  void TearDown() override {
    keyboard.stopTap();
    KeyboardTest::TearDown();
  }
  // What the program writes.
  std::string run(std::vector<std::string> words) {
    const auto output = desktop_->directory() / "output.txt";
    std::filesystem::remove(output);
    runProgram({.words = std::move(words), .variables = desktop_->variables(), .output = output});
    return readFile(output);
  }
  std::string modifyMap(const std::string& line) { return run({"xmodmap", "-e", line}); }
  // Types until the tap has seen `expected` as the last character, as a change arrives when it arrives.
  bool readsAs(XKeycode keycode, const std::string& expected) {
    keyboard.seenText.clear();
    return keyboard.pumpUntil([&] {
      const auto count = keyboard.seen.size();
      keys().tap(keycode);
      keyboard.pumpUntil([&] { return keyboard.seen.size() > count; }, std::chrono::milliseconds(500));
      return keyboard.seenText.ends_with(expected);
    });
  }
  // The same for the window, which reads the map anew.
  bool arrivesAs(XKeycode keycode, const std::string& expected) {
    window.clear();
    keys().tap(keycode);
    return typedOnceItIs(expected) == expected;
  }
};

constexpr XKeycode kQ = 24, kA = 38, kCapsLock = 66, kKeypad1 = 87;

TEST_F(KeyboardChangesTest, AKeyWithAnotherSymbolIsReadSoAndStaysSoAfterTheTap) {
  const auto pristine = run({"xmodmap", "-pke"});
  for (const auto* line : {"keycode 66 = Escape", "keycode 49 = asciitilde grave", "keysym Menu = Multi_key",
                           "keycode 24 = x X", "clear lock"}) {
    modifyMap(line);
    EXPECT_TRUE(readsAs(kA, "a")) << line;
  }
  EXPECT_TRUE(readsAs(kQ, "x"));
  EXPECT_TRUE(arrivesAs(kQ, "x"));
  const auto map = run({"xmodmap", "-pke"});
  const auto modifiers = run({"xmodmap", "-pm"});
  keyboard.stopTap();
  for (auto* typist : {&keys(), &desktop_->secondKeyboard()}) {
    typist->tap(kA);  // the session's keyboard takes the map of the one that is typed on
    EXPECT_EQ(typedOnceItIs(typist == &keys() ? "xa" : "xaa"), typist == &keys() ? "xa" : "xaa");
    EXPECT_EQ(run({"xmodmap", "-pke"}), map);
    EXPECT_EQ(run({"xmodmap", "-pm"}), modifiers);
  }
  desktop_->setLayout("us");
  EXPECT_EQ(run({"xmodmap", "-pke"}), pristine);
}

TEST_F(KeyboardChangesTest, CharactersThatTheLayoutLacksAreTypedByOthersAndTheMapIsAsBefore) {
  const auto pristine = run({"xmodmap", "-pke"});
  run({"xdotool", "type", "--delay", "1", "h\u00E9\u20AC\u00DF\u0416 done"});
  EXPECT_TRUE(readsAs(kA, "a"));
  keyboard.stopTap();
  EXPECT_TRUE(arrivesAs(kA, "a"));
  EXPECT_EQ(run({"xmodmap", "-pke"}), pristine);
}

TEST_F(KeyboardChangesTest, ASingleKeyIsChangedOnKeyboardsOfDifferentLayouts) {
  const auto second = std::to_string(deviceNamed(*desktop_, XorgServer::kSecondKeyboardSocket));
  run({"setxkbmap", "-device", second, "de"});
  modifyMap("keycode 24 = x X");
  ASSERT_TRUE(readsAs(kQ, "x"));
  constexpr XKeycode kY = 29;  // on a US keyboard
  const auto typesOnBoth = [&](auto typed) {
    for (int i = 0; i < 2; ++i) {
      for (auto* typist : {&keys(), &desktop_->secondKeyboard()}) {
        for (const auto key : {kQ, kY}) {
          const auto before = typed();
          typist->tap(key);
          EXPECT_TRUE(keyboard.pumpUntil([&] { return typed() != before; }));
        }
      }
    }
    return typed();
  };
  keyboard.seenText.clear();
  EXPECT_EQ(typesOnBoth([&] { return keyboard.seenText; }), "xyxzxyxz");
}

TEST_F(KeyboardChangesTest, TheRepeatRateIsThatOfTheSessionAndStaysSoAfterTheTap) {
  const auto before = run({"xset", "q"});
  run({"xset", "r", "rate", "150", "80"});
  run({"xset", "b", "17", "300", "50"});
  const auto wanted = run({"xset", "q"});
  ASSERT_NE(before, wanted);
  EXPECT_TRUE(readsAs(kA, "a"));
  const auto typedBefore = window.typed().size();
  const auto seenBefore = keyboard.seen.size();
  keys().press("a");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed().size() > typedBefore + 30; }));
  keys().release("a");
  keys().tap(kQ);
  ASSERT_TRUE(
      keyboard.pumpUntil([&] { return window.typed().ends_with("q") && keyboard.seenText.ends_with("q"); }));
  EXPECT_NEAR(static_cast<double>(window.typed().size() - typedBefore),
              static_cast<double>(keyboard.seen.size() - seenBefore), 2.0);
  keyboard.stopTap();
  EXPECT_TRUE(arrivesAs(kA, "a"));
  EXPECT_EQ(run({"xset", "q"}), wanted);
  run({"xset", "r", "rate", "660", "25"});
  run({"xset", "b", "50", "400", "100"});
}

TEST_F(KeyboardChangesTest, LocksThatOtherProgramsSetHoldForWhatIsTyped) {
  run({"xdotool", "key", "Num_Lock"});
  EXPECT_TRUE(readsAs(kKeypad1, "1"));
  keys().tap("Num_Lock");
  keyboard.seenText.clear();
  keys().tap(kKeypad1);
  keys().tap(kA);
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText.ends_with("a"); }));
  EXPECT_FALSE(keyboard.seenText.starts_with("1")) << "toggled by hand";
  run({"xdotool", "key", "Caps_Lock"});
  EXPECT_TRUE(readsAs(kA, "A"));
  keys().tap(kCapsLock);
  keys().tap(kCapsLock);
  keys().tap(kCapsLock);
  keyboard.seenText.clear();
  keys().type("abc");  // while the notices of Caps Lock are still on their way
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText == "abc"; })) << keyboard.seenText;
  keyboard.stopTap();
  EXPECT_TRUE(arrivesAs(kA, "a"));
}

TEST_F(KeyboardChangesTest, AShiftThatIsTappedWithStickyKeysCountsForTheNextKey) {
  setControls(*desktop_, XCB_XKB_BOOL_CTRL_STICKY_KEYS, true);
  EXPECT_TRUE(readsAs(kA, "a"));
  keyboard.seenText.clear();
  keys().tap("Shift");
  keys().type("brb");  // without a pause: nothing has told of the Shift yet
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText.size() == 3; }));
  EXPECT_EQ(keyboard.seenText, "Brb");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed().ends_with("Brb"); })) << window.typed();
  keyboard.stopTap();
  EXPECT_TRUE(arrivesAs(kA, "a"));
  EXPECT_NE(controls(*desktop_) & XCB_XKB_BOOL_CTRL_STICKY_KEYS, 0U) << "gone with the tap";
  setControls(*desktop_, XCB_XKB_BOOL_CTRL_STICKY_KEYS, false);
}

// Keys pass two keyboards: what delays or drops them must do so once.
TEST_F(KeyboardChangesTest, SlowKeysWaitOnTheSessionsKeyboardOnlyWhileAKeyboardFloats) {
  const auto device = deviceNamed(*desktop_, XorgServer::kKeyboardSocket);
  setControls(*desktop_, XCB_XKB_BOOL_CTRL_SLOW_KEYS | XCB_XKB_BOOL_CTRL_STICKY_KEYS, true);
  const auto isFollowed = [&] { return (controls(*desktop_, device) & XCB_XKB_BOOL_CTRL_STICKY_KEYS) != 0; };
  EXPECT_TRUE(keyboard.pumpUntil(isFollowed));
  EXPECT_EQ(controls(*desktop_, device) & XCB_XKB_BOOL_CTRL_SLOW_KEYS, 0U);
  keyboard.stopTap();
  EXPECT_NE(controls(*desktop_, device) & XCB_XKB_BOOL_CTRL_SLOW_KEYS, 0U);
  setControls(*desktop_, XCB_XKB_BOOL_CTRL_SLOW_KEYS | XCB_XKB_BOOL_CTRL_STICKY_KEYS, false);
}

TEST_F(KeyboardChangesTest, ModifiersThatStickDoNotReachPostedKeys) {
  setControls(*desktop_, XCB_XKB_BOOL_CTRL_STICKY_KEYS, true);
  const auto post = [&] {
    keyboard.service->post([](KeyStream::Output& output) {
      output.press(kQ);
      output.release(kQ);
    });
  };
  // What the window has noted since the last call, once it is that.
  const auto arrives = [&](const std::string& log) {
    keyboard.pumpUntil([&] { return window.log() == log; });
    const auto result = window.log();
    window.clear();
    return result;
  };
  const std::string shift = "<Shift_L>^<Shift_L>";
  keys().tap("Shift");
  EXPECT_EQ(arrives(shift), shift);
  post();
  EXPECT_EQ(arrives("q^q"), "q^q") << "latched";
  keys().tap("Shift");
  keys().tap("Shift");
  keys().tap(kA);
  EXPECT_EQ(arrives(shift + shift + "A^A"), shift + shift + "A^A");
  post();
  EXPECT_EQ(arrives("q^q"), "q^q") << "locked";
  keys().tap(kA);
  EXPECT_EQ(arrives("A^A"), "A^A") << "locked as before";
  keys().tap("Shift");
  EXPECT_TRUE(readsAs(kA, "a"));
  setControls(*desktop_, XCB_XKB_BOOL_CTRL_STICKY_KEYS, false);
}

TEST_F(KeyboardChangesTest, AStormOfLayoutsEndsWithTheLastOne) {
  for (int i = 0; i < 8; ++i) {
    for (const auto* layout : {"de", "fr", "us"}) {
      run({"setxkbmap", layout});
      const auto count = keyboard.seen.size();
      keys().tap(kA);
      EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seen.size() > count; }));
    }
    modifyMap("keycode 24 = x X");
  }
  EXPECT_TRUE(readsAs(kQ, "x"));
  run({"setxkbmap", "us"});
  EXPECT_TRUE(readsAs(kQ, "q"));
  EXPECT_TRUE(arrivesAs(kQ, "q"));
}

TEST_F(KeyboardChangesTest, AMapThatChangesWithoutEndInterruptsTheTapUntilItIsCalm) {
  bool isInterrupted = false;
  const auto observation = keyboard.service->observeObstacles([&] {
    const auto obstacles = keyboard.service->obstacles();
    if (std::ranges::find(obstacles, AccessibilityObstacle::watchingIsInterrupted) != obstacles.end())
      isInterrupted = true;
  });
  std::jthread changer([&](const std::stop_token& stop) {
    const auto connection = std::move(XConnection::open(desktop_->display())).value();
    for (std::uint32_t symbol = 'b'; !stop.stop_requested(); symbol = symbol == 'b' ? 'c' : 'b') {
      xcb_change_keyboard_mapping(connection->get(), 1, kQ, 1, &symbol);
      connection->sync();
    }
  });
  EXPECT_TRUE(keyboard.pumpUntil([&] { return isInterrupted; }, std::chrono::seconds(30)));
  changer.request_stop();
  changer.join();
  EXPECT_TRUE(readsAs(kA, "a"));
  EXPECT_GT(keyboard.unseen, 0);
}

TEST_F(KeyboardChangesTest, ATapThatTheServerDelaysTooLongIsGivenUpAndBeginsWhenItCan) {
  keyboard.stopTap();
  {
    const auto busy = std::move(XConnection::open(desktop_->display())).value();
    xcb_grab_server(busy->get());
    busy->sync();
    EXPECT_TRUE(keyboard.startTap());
  }
  window.clear();
  EXPECT_TRUE(readsAs(kA, "a"));
  EXPECT_TRUE(keyboard.service->obstacles().empty());
  keyboard.stopTap();
  EXPECT_TRUE(arrivesAs(kA, "a")) << "no grab is left";
}

}  // namespace
}  // namespace quorlo
