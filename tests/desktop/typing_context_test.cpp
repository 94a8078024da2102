// Places where what is typed must arrive as typed: lock screens, prompts, password fields, input methods.
#include "desktop/quorlo_desktop_test.h"

#include <xcb/xcb.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

class DesktopTypingContextTest : public QuorloDesktopTest {};

std::string readFile(const std::filesystem::path& file) {
  std::ifstream in(file);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Another program that has the keyboard for itself until Escape is typed (tests/desktop/apps).
class KeyboardTaker {
 public:
  KeyboardTaker(VirtualDesktop& desktop, const std::string& kind)
      : file_(desktop.directory() / "taken.txt"), process_(start(desktop, kind)) {
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(file_); })) << kind;
  }

  std::string typedOnceItIs(const std::string& expected) const {
    std::string seen;
    waitUntil([&] { return (seen = readFile(file_)) == expected; });
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

// A stand-in for services of the session (tests/desktop/apps), on a bus of its own or on the desktop's.
class SessionServices {
 public:
  SessionServices(VirtualDesktop& desktop, const std::vector<std::string>& names, const std::string& address)
      : desktop_(desktop), address_(address), name_(names.front()), process_(start(desktop, names)) {
    EXPECT_TRUE(waitUntil([&] { return readFile(output(desktop)) == "ready\n"; }));
  }

  // The engine, the input method or the role of the part with the focus.
  void tell(const std::string& what) {
    runProgram({.words = {"dbus-send", "--bus=" + address_, "--print-reply", "--dest=" + name_, "/",
                          "org.quorlo.Test.Tell", "string:" + what},
                .variables = desktop_.variables(),
                .output = desktop_.directory() / "tell.txt"});
  }

 private:
  static std::filesystem::path output(VirtualDesktop& desktop) {
    return desktop.directory() / "services.txt";
  }
  ChildProcess start(VirtualDesktop& desktop, std::vector<std::string> names) const {
    std::filesystem::remove(output(desktop));
    names.insert(names.begin(), {"env", "DBUS_SESSION_BUS_ADDRESS=" + address_, SESSION_SERVICES});
    return desktop.start(std::move(names), output(desktop));
  }

  VirtualDesktop& desktop_;
  std::string address_;
  std::string name_;
  ChildProcess process_;
};

struct DesktopTypingServicesTest : DesktopTypingContextTest {
  void TearDown() override {
    DesktopTypingContextTest::TearDown();
    std::filesystem::remove_all(desktop().configHome() / "ibus");
  }
  std::string status() {
    const auto file = desktop().directory() / "status.txt";
    std::filesystem::remove(file);
    runProgram({.words = {QUORLO, "status"}, .variables = desktop().variables(), .output = file});
    return readFile(file);
  }
  bool statusSays(const std::string& what) {
    return waitUntil([&] { return status().find(what) != std::string::npos; });
  }
  bool statusIsSilent() {
    return waitUntil([&] { return status().find("nothing expands") == std::string::npos; });
  }
  std::string sessionBus() { return desktop().variables().at("DBUS_SESSION_BUS_ADDRESS"); }
};

TEST_F(DesktopTypingServicesTest, NothingExpandsWhileIbusMakesTextOfTheKeysUntilItEndsAndWhenItIsBack) {
  startQuorlo();
  auto editor = openRichEditor();
  const auto startBus = [&](const std::string& address) {
    return desktop().start({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address});
  };
  std::string expected;
  const auto expectTyped = [&](const std::string& keys, const std::string& text) {
    type(keys);
    expected += text;
    EXPECT_EQ(editor->textOnceItIs(expected), expected);
  };
  for (const std::string number : {"1", "2"}) {  // the second is one that was started again
    const auto socket = desktop().directory() / ("ibus" + number);
    auto bus = startBus("unix:path=" + socket.string());
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(socket); }));
    SessionServices ibus(desktop(), {"org.freedesktop.IBus"}, "unix:path=" + socket.string());
    ibus.tell("libpinyin");
    EXPECT_TRUE(statusSays("input method libpinyin")) << status();
    expectTyped("brb sig\n", "brb sig\n");
    ibus.tell("xkb:us::eng");
    EXPECT_TRUE(statusIsSilent());
    expectTyped("brb.", "brb.");
    expectTyped(" brb .", " be right back .");
    ibus.tell("hangul");
    EXPECT_TRUE(statusSays("input method hangul")) << status();
    bus.signal(SIGKILL);
    EXPECT_TRUE(statusIsSilent());
    expectTyped(" brb .", " be right back .");
  }
}

TEST_F(DesktopTypingServicesTest, AnEngineThatRunsAtTheStartCountsUnlessTheUserWantsItOtherwise) {
  SessionServices ibus(desktop(), {"org.freedesktop.IBus"}, sessionBus());
  ibus.tell("libpinyin");
  startQuorlo();
  auto editor = openRichEditor();
  EXPECT_TRUE(statusSays("input method libpinyin")) << status();
  type("brb \n");
  EXPECT_EQ(editor->textOnceItIs("brb \n"), "brb \n");
  runProgram({.words = {QUORLO, "settings", "set", "ExpandWhileInputMethodIsActive", "on"},
              .variables = desktop().variables(),
              .output = desktop().directory() / "set.txt"});
  EXPECT_TRUE(statusIsSilent());
  type("brb .");
  EXPECT_EQ(editor->textOnceItIs("brb \nbe right back ."), "brb \nbe right back .");
}

TEST_F(DesktopTypingServicesTest, NothingExpandsWhileFcitxMakesTextOfTheKeys) {
  startQuorlo();
  auto editor = openRichEditor();
  {
    SessionServices fcitx(desktop(), {"org.fcitx.Fcitx5"}, sessionBus());
    // Told until Quorlo listens.
    EXPECT_TRUE(waitUntil([&] {
      fcitx.tell("pinyin");
      return status().find("input method pinyin") != std::string::npos;
    }));
    type("brb \n");
    EXPECT_EQ(editor->textOnceItIs("brb \n"), "brb \n");
    fcitx.tell("keyboard-us");
    EXPECT_TRUE(statusIsSilent());
    fcitx.tell("mozc");
    EXPECT_TRUE(statusSays("input method mozc"));
  }
  EXPECT_TRUE(statusIsSilent());
  type("brb .");
  EXPECT_EQ(editor->textOnceItIs("brb \nbe right back ."), "brb \nbe right back .");
}

TEST_F(DesktopTypingServicesTest, APasswordFieldThatTheAccessibilityBusNamesSeesWhatWasTyped) {
  constexpr auto kPassword = "40";
  constexpr auto kEntry = "79";
  startQuorlo(kLastSymbol);
  auto editor = openRichEditor();
  {
    SessionServices services(desktop(), {"org.a11y.atspi.Registry", "org.a11y.Bus"}, sessionBus());
    EXPECT_TRUE(waitUntil([&] {
      services.tell(kEntry);
      services.tell(kPassword);
      return status().find("a password field") != std::string::npos;
    }));
    type("pasbrb1 br");
    EXPECT_EQ(editor->textOnceItIs("pasbrb1 br"), "pasbrb1 br");
    services.tell(kEntry);
    EXPECT_TRUE(statusIsSilent());
    type("b brb.");
    EXPECT_EQ(editor->textOnceItIs("pasbrb1 brb be right back."), "pasbrb1 brb be right back.");
    services.tell(kPassword);
    EXPECT_TRUE(statusSays("a password field"));
  }
  EXPECT_TRUE(statusIsSilent()) << "its program is gone";
}

}  // namespace
}  // namespace quorlo
