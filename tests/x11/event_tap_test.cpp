// The tap on a real X server: a virtual keyboard types, a window writes down what arrives.
#include "platform/insertion/insertion_table.h"
#include "text/utf.h"
#include "x11/desktop/x11_insertion_target.h"
#include "x11/keyboard/x11_event_poster.h"
#include "x11/keyboard_desktop.h"

#include <gtest/gtest.h>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <chrono>
#include <future>
#include <string>

namespace quorlo {
namespace {

class EventTapTest : public KeyboardTest {
 protected:
  std::vector<PasteSelection> pastes;
  ActiveWindow active;
  InsertionTable table;
  X11InsertionTarget target{[this] { return active; }, [this]() -> const InsertionTable& { return table; }};
  X11EventPoster poster{*keyboard.service, target, [this](const PasteTarget&, PasteSelection selection) {
                          pastes.push_back(selection);
                        }};
};

TEST_F(EventTapTest, KeysPassWithNothingLost) {
  ASSERT_TRUE(keyboard.startTap());
  keys().type("Hello");
  EXPECT_EQ(typedOnceItIs("<Shift_L>Hello"), "<Shift_L>Hello");
  EXPECT_EQ(keyboard.seenText, "Hello");
  keyboard.service->setScreenIsLocked(true);
  keys().type("secret");
  EXPECT_EQ(typedOnceItIs("<Shift_L>Hellosecret"), "<Shift_L>Hellosecret");
  EXPECT_EQ(keyboard.seenText, "Hello") << "a password is nobody's typing";
  EXPECT_EQ(keyboard.unseen, 1);
}

TEST_F(EventTapTest, KeysThatNeedNoVerdictPassWhileTheMainThreadIsBusy) {
  ASSERT_TRUE(keyboard.startTap());
  keyboard.port().passUnasked([](const KeyDownEvent& event) { return event.characters != u" "; });
  keyboard.judge = [&](const KeyDownEvent&) {
    for (const auto& key : keyboard.port().takePassedKeys()) keyboard.seenText += toUtf8(key.characters);
    return TapVerdict::swallow;
  };
  keys().type("Abc");
  EXPECT_TRUE(waitUntil([&] { return window.typed() == "<Shift_L>Abc"; })) << window.typed();
  keys().type(" d");
  EXPECT_EQ(typedOnceItIs("<Shift_L>Abcd"), "<Shift_L>Abcd");
  EXPECT_EQ(keyboard.seenText, " Abc") << "those before the space";
  EXPECT_TRUE(keyboard.port().isEnabled());
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

TEST_F(EventTapTest, ThousandsOfKeysTypedWithoutPauseArriveInOrder) {
  ASSERT_TRUE(keyboard.startTap());
  std::string text;
  for (int i = 0; i < 2000; ++i) text += static_cast<char>('a' + i * 7 % 26);
  keys().type(text);
  EXPECT_TRUE(typedOnceItIs(text) == text) << window.typed().size() << " keys";
  EXPECT_TRUE(keyboard.seenText == text) << keyboard.seenText.size() << " keys";
}

TEST_F(EventTapTest, KeysTypedDuringAHoldComeAfterItInOrderAndMayBeginAnother) {
  ASSERT_TRUE(keyboard.startTap());
  HoldId hold = 0;
  keyboard.judge = [&](const KeyDownEvent& event) {
    if (event.characters != u"!") return TapVerdict::pass;
    hold = keyboard.service->beginHold();
    return TapVerdict::swallow;
  };
  keys().press("a");
  keys().type("!bc!");  // the a is still down, and Shift with the exclamation marks
  keys().press("d");
  keys().release("a");
  for (const KeyCode digit : {KeyCode{18}, KeyCode{19}}) {
    ASSERT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText.ends_with("!"); }));
    EXPECT_TRUE(keyboard.service->keepTrigger(hold));
    poster.postKey(digit, 0, PostLocation::session, 2);
    keyboard.seenText.clear();
    keyboard.service->endHold();
  }
  // A slow machine sees the d repeat, and Shift once more where its release comes after the end of the hold.
  const auto logged = [&] {
    auto log = window.log();
    for (const std::string shift : {"^<Shift_L>", "<Shift_L>"}) {
      for (auto at = log.find(shift); at != std::string::npos; at = log.find(shift))
        log.erase(at, shift.size());
    }
    return log;
  };
  EXPECT_TRUE(keyboard.pumpUntil([&] { return logged().starts_with("a^a1^11^1b^bc^c2^22^2d"); }))
      << window.log();
  keys().release("d");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.log().ends_with("^d"); }));
}

TEST_F(EventTapTest, AHoldWithoutProgressEndsAfterTwoSecondsThoughTheMainThreadHangs) {
  ASSERT_TRUE(keyboard.startTap());
  const auto begin = std::chrono::steady_clock::now();
  keyboard.service->beginHold();
  keys().type("ab");
  EXPECT_TRUE(waitUntil([&] { return window.typed() == "ab"; }));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST_F(EventTapTest, AStalledMainThreadCostsOneDeadlineAndIsTold) {
  ASSERT_TRUE(keyboard.startTap());
  keys().type("abc");  // nobody pumps the queue
  EXPECT_TRUE(waitUntil([&] { return window.typed() == "abc"; }));
  EXPECT_FALSE(keyboard.port().isEnabled());
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.timeouts == 1; }));
  EXPECT_EQ(keyboard.seenText, "");
  keyboard.port().enable();
  keys().type("d");
  EXPECT_EQ(typedOnceItIs("abcd"), "abcd");
  EXPECT_EQ(keyboard.seenText, "d");
  EXPECT_EQ(keyboard.timeouts, 1);
}

TEST_F(EventTapTest, AHeldShiftNeitherLeaksIntoPostedKeysNorSticks) {
  ASSERT_TRUE(keyboard.startTap());
  keys().press("Shift");
  keys().tap(38);
  ASSERT_TRUE(keyboard.pumpUntil([&] { return window.typed() == "<Shift_L>A"; }));
  poster.postKey(key::kBackspace, 0, PostLocation::session, 2);
  poster.postKey(11, modifier::kCommand, PostLocation::annotatedSession, 1);
  keys().tap(38);
  keys().release("Shift");
  keys().tap(38);
  const std::string typed = "<Shift_L>A<BackSpace><BackSpace><Shift_L><Control_L>b<Shift_L>Aa";
  EXPECT_EQ(typedOnceItIs(typed), typed);
  EXPECT_EQ(keyboard.seen.size(), 5U);  // three letters and what was posted to the session
}

TEST_F(EventTapTest, WithoutATapTheUsersModifiersAreLetGoForPostedKeysToo) {
  keys().press("Shift");
  ASSERT_EQ(typedOnceItIs("<Shift_L>"), "<Shift_L>");
  poster.postKey(0, 0, PostLocation::session, 1);
  ASSERT_EQ(typedOnceItIs("<Shift_L>a<Shift_L>"), "<Shift_L>a<Shift_L>");
  keys().tap(56);
  keys().release("Shift");
  keys().type("c");
  ASSERT_EQ(typedOnceItIs("<Shift_L>a<Shift_L>Bc"), "<Shift_L>a<Shift_L>Bc");
  poster.postKey(0, modifier::kShift, PostLocation::session, 1);
  ASSERT_EQ(typedOnceItIs("<Shift_L>a<Shift_L>Bc<Shift_L>A"), "<Shift_L>a<Shift_L>Bc<Shift_L>A");
  keys().type("d");
  EXPECT_EQ(typedOnceItIs("<Shift_L>a<Shift_L>Bc<Shift_L>Ad"), "<Shift_L>a<Shift_L>Bc<Shift_L>Ad")
      << window.log();
}

TEST_F(EventTapTest, ModifiersHeldWhenTheTapBeginsGoOnAndOtherKeysAreLetGo) {
  keys().press("Shift");
  keys().press(39);
  ASSERT_TRUE(keyboard.pumpUntil([&] { return window.log() == "<Shift_L>S"; }));
  ASSERT_TRUE(keyboard.startTap());
  keys().tap(38);
  keys().release(39);
  keys().release("Shift");
  keys().tap(38);
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed().ends_with("Aa"); })) << window.log();
  keyboard.stopTap();
  keys().type("Bc");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed().ends_with("Aa<Shift_L>Bc"); })) << window.log();
}

TEST_F(EventTapTest, KeysTypedWhileThousandsArePostedComeAfterThem) {
  ASSERT_TRUE(keyboard.startTap());
  constexpr int kCount = 40'000;
  const auto typist = std::async(std::launch::async, [&] {
    waitUntil([&] { return !window.typed().empty(); });  // the posting has begun
    keys().type("0123456789", std::chrono::milliseconds(50));
  });
  poster.postKey(0, 0, PostLocation::annotatedSession, kCount);
  keyboard.pumpUntil([&] { return typist.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText == "0123456789"; })) << keyboard.seenText;
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed().size() >= kCount + 10; }));
  std::string digits = window.typed();
  EXPECT_EQ(std::erase(digits, 'a'), kCount);
  EXPECT_EQ(digits, "0123456789");
  EXPECT_TRUE(keyboard.port().isEnabled());
}

TEST_F(EventTapTest, AKilledProcessLeavesTheKeyboardToWhoWaitsAndNoKeyPressed) {
  const auto output = desktop_->directory() / "killed.log";
  auto holder = desktop_->start({TAP_HOLDER, desktop_->display(), QUORLO_KEYBOARD_GUARD}, output);
  ASSERT_TRUE(waitUntil([&] { return readFile(output).find("tapping") != std::string::npos; }));
  keys().press(38);
  ASSERT_TRUE(waitUntil([&] { return window.typed() == "a"; }));
  ASSERT_TRUE(keyboard.startTap());
  EXPECT_EQ(keyboard.service->obstacles(), std::vector{AccessibilityObstacle::keyboardsAreTaken});
  holder.signal(SIGKILL);
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.log() == "a^a"; })) << window.log();
  keys().release(38);
  ASSERT_TRUE(keyboard.pumpUntil([&] { return keyboard.service->obstacles().empty(); }));
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.unseen == 1; }));
  keys().type("b");
  EXPECT_EQ(typedOnceItIs("ab"), "ab") << window.log();
  EXPECT_EQ(keyboard.seenText, "b") << "the tap that waited has the keyboard now";
}

TEST(KeyboardPlugTest, AKeyboardThatIsUnpluggedLetsItsKeysGoAndIsWatchedAgainWhenItComesBack) {
  VirtualDesktop desktop;
  KeyWindow window(desktop);
  KeyboardDesktop keyboard(desktop);
  ASSERT_TRUE(keyboard.startTap());
  desktop.secondKeyboard().press("Shift");
  ASSERT_TRUE(keyboard.pumpUntil([&] { return window.log() == "<Shift_L>"; }));
  setKeyboardEnabled(desktop, XorgServer::kSecondKeyboardSocket, false);
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.log() == "<Shift_L>^<Shift_L>"; })) << window.log();
  desktop.keyboard().type("a");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed() == "<Shift_L>a"; })) << window.log();

  setKeyboardEnabled(desktop, XorgServer::kKeyboardSocket, false);
  EXPECT_EQ(keyboard.service->obstacles(), std::vector{AccessibilityObstacle::noKeyboard});
  // All of them come back, as after the machine has slept or another terminal was in front.
  for (const auto* name : {XorgServer::kSecondKeyboardSocket, XorgServer::kKeyboardSocket}) {
    keyboard.seenText.clear();
    setKeyboardEnabled(desktop, name, true);
    InputDevice again(desktop.directory() / name);
    EXPECT_TRUE(keyboard.pumpUntil([&] {
      again.key(56, true);
      again.key(56, false);
      return keyboard.seenText.ends_with("b");
    })) << keyboard.seenText;
  }
  EXPECT_TRUE(keyboard.service->obstacles().empty());
}

TEST(KeyboardPlugTest, AKeyboardThatAnotherProgramLetsGoIsWatchedOnceItIsTypedOn) {
  VirtualDesktop desktop;
  KeyWindow window(desktop);
  KeyboardDesktop keyboard(desktop);
  const auto other = std::move(XConnection::open(desktop.display())).value();
  const auto device = deviceNamed(desktop, XorgServer::kSecondKeyboardSocket);
  const std::uint32_t keyEvents = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
  other->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(other->get(), 2, 2));
  ASSERT_TRUE(
      other->reply(xcb_input_xi_grab_device_reply,
                   xcb_input_xi_grab_device(other->get(), other->root(), XCB_CURRENT_TIME, XCB_NONE, device,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, 0, 1, &keyEvents)));
  ASSERT_TRUE(keyboard.startTap());
  desktop.keyboard().type("a");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed() == "a"; }));
  xcb_input_xi_ungrab_device(other->get(), XCB_CURRENT_TIME, device);
  other->sync();
  std::string typed = "a";
  EXPECT_TRUE(keyboard.pumpUntil([&] {
    desktop.secondKeyboard().type("b");
    typed += "b";
    EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed() == typed; })) << window.typed();
    return keyboard.seenText.ends_with("b");
  }));
}

TEST(KeyboardPlugTest, AServerThatGoesAwayIsReportedOnceAndEverythingGoesOnQuietly) {
  VirtualDesktop desktop;
  KeyboardDesktop keyboard(desktop);
  ASSERT_TRUE(keyboard.startTap());
  desktop.server().stop();
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.connectionsLost == 1; }));
  keyboard.service->beginHold();
  keyboard.service->post([](KeyStream::Output& output) { output.press(38); });
  EXPECT_EQ(keyboard.service->map(), nullptr);
  keyboard.service->endHold();
  keyboard.stopTap();
  EXPECT_FALSE(keyboard.startTap());
  EXPECT_EQ(keyboard.connectionsLost, 1);
}

TEST_F(EventTapTest, AltGrDeadKeysAndComposeAreReadAsTheyAreTyped) {
  ASSERT_TRUE(keyboard.startTap());
  desktop_->setLayout("de");
  keys().type("z@{\u00E9\u00CA\u20AC");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText == "z@{\u00E9\u00CA\u20AC"; }))
      << keyboard.seenText;
  desktop_->setLayout("us", "compose:ralt");
  keyboard.seenText.clear();
  for (const auto* key : {"Multi_key", "o", "c"}) keys().tap(key);
  EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText == "\u00A9"; })) << keyboard.seenText;
  // The map follows to the grabbed keyboards: it holds when they are let go.
  desktop_->setLayout("de");
  keyboard.stopTap();
  window.clear();
  keys().type("zy");
  EXPECT_EQ(typedOnceItIs("zy"), "zy");
}

TEST_F(EventTapTest, ASwallowedEndOfACompositionLeavesNothingBehind) {
  desktop_->setLayout("us(intl)");
  ASSERT_TRUE(keyboard.startTap());
  keyboard.judge = [](const KeyDownEvent& event) {
    return event.characters == u"\u00E9" ? TapVerdict::swallow : TapVerdict::pass;
  };
  keys().tap("dead_acute");
  keys().tap("e");
  keys().type("x");
  EXPECT_TRUE(keyboard.pumpUntil([&] { return window.typed().ends_with("\u00E9<BackSpace>x"); }))
      << window.log();
  EXPECT_EQ(keyboard.seenText, "\u00E9x");
}

TEST_F(EventTapTest, EachKeyboardKeepsItsOwnLayoutDuringTheTapAndAfterIt) {
  const auto setLayout = [&](const std::string& keyboardName, const std::string& layout) {
    runProgram(
        {.words = {"setxkbmap", "-device", std::to_string(deviceNamed(*desktop_, keyboardName)), layout},
         .variables = desktop_->variables(),
         .output = {}});
  };
  constexpr XKeycode kY = 29;  // on a US keyboard
  const auto type = [&](VirtualKeyboard& typist) {
    const auto count = keyboard.seenText.size() + 1;
    typist.tap(kY);
    EXPECT_TRUE(keyboard.pumpUntil([&] { return keyboard.seenText.size() == count; }));
  };
  setLayout(XorgServer::kKeyboardSocket, "de");
  ASSERT_TRUE(keyboard.startTap());
  for (int i = 0; i < 2; ++i) {
    type(keys());
    type(desktop_->secondKeyboard());
  }
  EXPECT_EQ(keyboard.seenText, "zyzy");
  setLayout(XorgServer::kKeyboardSocket, "us(dvorak)");
  type(keys());
  EXPECT_EQ(keyboard.seenText, "zyzyf");
  keyboard.stopTap();
  for (auto* const typist : {&desktop_->secondKeyboard(), &keys()}) {
    const auto before = window.log();
    typist->tap(kY);
    EXPECT_TRUE(keyboard.pumpUntil([&] { return window.log() != before; }));
    window.clear();  // reads the map that the session has now
    typist->tap(kY);
    EXPECT_EQ(typedOnceItIs(typist == &keys() ? "f" : "y"), typist == &keys() ? "f" : "y");
  }
}

TEST_F(EventTapTest, ThePasteChordFitsTheApplicationAndTheLayout) {
  const auto pasteChord = [&] {
    window.clear();
    poster.paste();
    keyboard.pumpUntil([&] { return window.log().ends_with("_L>"); });
    return window.typed();
  };
  EXPECT_EQ(pasteChord(), "<Control_L>v");
  active.windowClass = "XTerm";
  EXPECT_EQ(pasteChord(), "<Shift_L><Insert>");
  active.windowClass = "Gvim";
  EXPECT_EQ(pasteChord(), "<Control_L>r<Control_L>o<Shift_L>+");
  active.windowClass = "Viewer";
  table = InsertionTable({{"viewer", {.pasteChords = {{0, U'\u20AC'}}}}});
  EXPECT_EQ(pasteChord(), "<Control_L>v") << "the layout lacks the key of the table";
  active.windowClass.clear();
  const auto setLayout = [&](const std::string& name, XKeycode keyOfV) {
    desktop_->setLayout(name);
    return keyboard.pumpUntil([&] { return keyboard.service->map()->keyFor(XKB_KEY_v, 0) == keyOfV; });
  };
  ASSERT_TRUE(setLayout("us(dvorak)", 60));
  EXPECT_EQ(pasteChord(), "<Control_L>v");
  ASSERT_TRUE(setLayout("ru", 0));
  EXPECT_EQ(pasteChord(), "<Shift_L><Insert>") << "no key has a v";
  window.clear();
  poster.postKey(key::kV, modifier::kCommand, PostLocation::session, 1);
  EXPECT_EQ(typedOnceItIs("<Control_L>м"), "<Control_L>м") << "a key of the user's";
  EXPECT_EQ(pastes, (std::vector{PasteSelection::clipboard, PasteSelection::clipboardAndPrimary,
                                 PasteSelection::clipboard, PasteSelection::clipboard,
                                 PasteSelection::clipboard, PasteSelection::clipboard}));
}

}  // namespace
}  // namespace quorlo
