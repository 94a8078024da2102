// Hot keys on a real X server, with the tap at work and without it.
#include "platform/hot_key_contract.h"
#include "x11/desktop/x11_hot_key_center.h"
#include "x11/keyboard/x11_keyboard_layout.h"
#include "x11/keyboard_desktop.h"

#include <algorithm>

namespace quorlo {
namespace {

class HotKeyTest : public KeyboardTest {
 protected:
  // Presses the combination and then another one, with which all that came before is done: either it calls
  // or, while hot keys are suspended, the window gets it.
  void press(const std::string& chord) {
    bool isDone = false;
    const auto last = center->registerHotKey({111, 0}, [&] { isDone = true; });
    window.clear();
    keys().tap(chord);
    keys().tap("F12");
    ASSERT_TRUE(keyboard.pumpUntil([&] { return isDone || window.typed().ends_with("<F12>"); }))
        << window.log() << last.ok();
  }
  Result<Subscription> count(Shortcut shortcut) {
    return center->registerHotKey(shortcut, [this] { ++calls; });
  }

  std::unique_ptr<X11HotKeyCenter> makeCenter() {
    return std::move(
               X11HotKeyCenter::connect({desktop_->display(), {}}, keyboard.queue, *keyboard.service, layout))
        .value();
  }

  X11KeyboardLayout layout{*keyboard.service};
  std::unique_ptr<X11HotKeyCenter> center = makeCenter();
  int calls = 0;
};

TEST_F(HotKeyTest, KeepTheContractWithTheTapAndWithout) {
  for (const bool tapping : {false, true}) {
    ASSERT_TRUE(!tapping || keyboard.startTap());
    expectHotKeysToCallWhileTheyAreRegistered(
        *center, [&](Shortcut shortcut) { press(shortcut == kMenuKey ? "Ctrl+Alt+space" : "Shift+F1"); });
  }
}

TEST_F(HotKeyTest, AHeldHotKeyCallsOnceWhateverIsLockedAndNobodyElseSeesItsKey) {
  const auto registered = count(kMenuKey);
  for (const auto* lock : {"Caps_Lock", "Num_Lock"}) {  // the second round with both, and the tap
    keys().tap(lock);
    ASSERT_TRUE(lock == std::string("Caps_Lock") || keyboard.startTap());
    calls = 0;
    for (const auto* key : {"Ctrl", "Alt", "space"}) keys().press(key);
    ASSERT_TRUE(keyboard.pumpUntil([&] { return calls == 1; }));
    // longer than the server waits before it repeats
    EXPECT_FALSE(keyboard.pumpUntil([&] { return calls > 1; }, std::chrono::milliseconds(900)));
    for (const auto* key : {"space", "Alt", "Ctrl"}) keys().release(key);
  }
  keys().tap("Caps_Lock");
  keys().tap("z");
  ASSERT_TRUE(keyboard.pumpUntil([&] { return window.typed().ends_with("z"); })) << window.log();
  EXPECT_EQ(window.typed().find("space"), std::string::npos) << window.log();
  EXPECT_EQ(keyboard.seenText, "z");
  keys().tap("Num_Lock");
}

TEST_F(HotKeyTest, ACombinationOfAnotherProgramIsRefusedByName) {
  const auto other = std::move(XConnection::open(desktop_->display())).value();
  xcb_grab_key(other->get(), 0, other->root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1, 65, XCB_GRAB_MODE_ASYNC,
               XCB_GRAB_MODE_ASYNC);
  other->sync();
  const auto refused = count(kMenuKey);
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().message, "Ctrl+Alt+Space is in use by another program.");
  auto rival = makeCenter();
  const auto theirs = rival->registerHotKey(kFolderKey, [] {});
  EXPECT_FALSE(count(kFolderKey).ok());
  rival.reset();
  EXPECT_TRUE(keyboard.pumpUntil([&] { return count(kFolderKey).ok(); }));
}

TEST_F(HotKeyTest, FollowTheirKeyWhenTheLayoutMovesItAndAreNamedAsItIsPrinted) {
  ASSERT_TRUE(keyboard.startTap());
  const auto registered = count({key::kEscape, modifier::kCommand});
  desktop_->setLayout("fr", "caps:swapescape");
  keyboard.pumpUntil([&] {
    for (const std::string key : {"Ctrl", "Escape"}) keys().press(key);
    keys().releaseAll();
    return calls > 0;
  });
  EXPECT_GT(calls, 0);
  ASSERT_TRUE(keyboard.pumpUntil([&] { return layout.labelOfKey(0) == u"Q"; }));
  const NativeKeyPress press{24, 'a', XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4 | XCB_MOD_MASK_2};
  EXPECT_EQ(shortcutText(layout.shortcutOf(press).value(), layout), u"Super+Ctrl+A");
  EXPECT_FALSE(layout.shortcutOf({37, 0xFFE3, 0})) << "only a modifier";
}

}  // namespace
}  // namespace quorlo
