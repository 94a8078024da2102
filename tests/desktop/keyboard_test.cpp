// The keyboard is changed by other programs, as settings daemons, remappers and automation do.
#include "desktop/quorlo_desktop_test.h"

namespace quorlo {
namespace {

class DesktopKeyboardTest : public QuorloDesktopTest {
 protected:
  static std::string run(const VirtualDesktop& on, std::vector<std::string> words) {
    const auto output = on.directory() / "output.txt";
    std::filesystem::remove(output);
    ChildProcess process({.words = std::move(words), .variables = on.variables(), .output = output});
    process.waitForEnd(kPatience);
    return readFile(output);
  }
  std::string run(std::vector<std::string> words) { return run(desktop(), std::move(words)); }
};

TEST_F(DesktopKeyboardTest, AbbreviationsExpandAfterEveryChangeOfTheMap) {
  startQuorlo();
  Mousepad editor(desktop());
  std::string expected;
  const std::vector<std::vector<std::string>> changes{
      {"xmodmap", "-e", "keycode 66 = Escape"},     {"xmodmap", "-e", "keycode 49 = asciitilde grave"},
      {"xmodmap", "-e", "keysym Menu = Multi_key"}, {"xmodmap", "-e", "clear Lock"},
      {"xset", "r", "rate", "250", "50"},           {"setxkbmap", "us", "-option", "ctrl:nocaps"},
      {"setxkbmap", "us", "-option", ""},           {"xdotool", "key", "Caps_Lock", "Caps_Lock"},
  };
  for (const auto& change : changes) {
    run(change);
    type("brb ");
    expected += "be right back ";
    ASSERT_EQ(editor.textOnceItIs(expected), expected) << change.back();
  }
  // Whether these characters arrive is between that program and the editor: each changes the map on its own.
  run({"xdotool", "type", "\u00E9\u20AC"});
  type(" sig .");
  EXPECT_TRUE(waitUntil([&] {
    const auto text = editor.text();
    return text.starts_with(expected) && text.ends_with(" Kind regards, Ada .");
  })) << editor.text();
}

TEST_F(DesktopKeyboardTest, TheMapIsAfterQuorloWhatItWasWithIt) {
  startQuorlo();
  Mousepad editor(desktop());
  run({"xmodmap", "-e", "keycode 66 = Escape"});
  run({"xdotool", "type", "\u00E9\u20AC"});
  type("x");
  EXPECT_TRUE(waitUntil([&] { return editor.text().ends_with("x"); })) << editor.text();
  const auto map = run({"xmodmap", "-pke"});
  quorlo_.reset();
  type("y");
  EXPECT_TRUE(waitUntil([&] { return editor.text().ends_with("xy"); })) << editor.text();
  EXPECT_EQ(run({"xmodmap", "-pke"}), map);
  run({"setxkbmap", "us"});
}

TEST_F(DesktopKeyboardTest, WithoutAKeyboardItSaysSoUntilThereIsOne) {
  VirtualDesktop bare;
  QuorloProgram program(bare, QUORLO, usualLibrary());
  const auto says = [&](const std::string& command) {
    return waitUntil([&] {
      return run(bare, {QUORLO, command}).find("No keyboard is plugged in.") != std::string::npos;
    });
  };
  EXPECT_EQ(run(bare, {QUORLO, "status"}).find("keyboard"), std::string::npos);
  for (const auto* keyboard : {XorgServer::kKeyboardSocket, XorgServer::kSecondKeyboardSocket}) {
    run(bare, {"xinput", "disable", keyboard});
  }
  EXPECT_TRUE(says("status"));
  EXPECT_TRUE(says("doctor"));
  run(bare, {"xinput", "enable", XorgServer::kKeyboardSocket});
  EXPECT_TRUE(waitUntil([&] { return run(bare, {QUORLO, "status"}).find("keyboard") == std::string::npos; }));
}

}  // namespace
}  // namespace quorlo
