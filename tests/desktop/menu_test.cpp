// The snippet menu of the real program, driven by real keys and clicks, over other people's editors.
#include "desktop/quorlo_desktop_test.h"

#include <nlohmann/json.hpp>

#include <array>
#include <sstream>

namespace quorlo {
namespace {

using std::chrono::milliseconds;

constexpr const char* kHotKey = "Ctrl+Alt+space";
const StoredSettings kWithHotKey{
    {"SnippetMenuViewShortcut", R"("{\"keyCode\":49,\"modifierFlags\":1572864}")"}};

class DesktopMenuTest : public QuorloDesktopTest {
 protected:
  static std::string library() {
    nlohmann::json snippets = nlohmann::json::array();
    for (const auto& [title, text] :
         {std::pair{"Greeting", "Kind regards, Ada"}, {"Absence", "be right back"}}) {
      snippets.push_back({{"title", title}, {"text", text}, {"abbreviation", std::string(title) + "zz"}});
    }
    return nlohmann::json{{"snippets", snippets}}.dump();
  }
  xcb_window_t menu() {
    const auto active = desktop().windows().active();
    const bool isMenu = active != 0 && desktop().windows().processOf(active) == quorlo().process().pid() &&
                        desktop().windows().titleOf(active) == "Quorlo";
    return isMenu ? active : 0;
  }
  void waitForMenu() {
    ASSERT_TRUE(waitUntil([&] { return menu() != 0; }));
  }
  bool isActive(const Application& editor) {
    return waitUntil([&] { return desktop().windows().active() == editor.window(); });
  }

  // What the bus answers to a call of the icon's, as gdbus writes it.
  std::string callItem(const std::string& path, const std::vector<std::string>& call) {
    std::vector<std::string> words{"gdbus", "call",          "--session", "--dest",
                                   item_,   "--object-path", path,        "--method"};
    words.insert(words.end(), call.begin(), call.end());
    const auto answer = desktop().directory() / "answer";
    std::filesystem::remove(answer);
    desktop().start(words, answer).waitForEnd(kPatience);
    return readFile(answer);
  }
  std::string plainMenu() {
    return callItem("/StatusNotifierItem/Menu", {"com.canonical.dbusmenu.GetLayout", "0", "1", "[]"});
  }
  // Chooses the line with the label.
  void choose(const std::string& label) {
    const auto lines = plainMenu();
    const auto end = lines.find("'label': <'" + label + "'");
    ASSERT_NE(end, std::string::npos) << lines;
    const auto begin = lines.rfind("<(", end) + 2;
    callItem("/StatusNotifierItem/Menu",
             {"com.canonical.dbusmenu.Event", lines.substr(begin, lines.find(',', begin) - begin), "clicked",
              "<0>", "0"});
  }

  std::string item_;  // the icon's name on the bus
};

TEST_F(DesktopMenuTest, AChosenSnippetArrivesInTheEditorThatHadTheFocus) {
  startQuorlo(library(), kWithHotKey);
  const auto holder = fillClipboard({"text:mine"});
  const auto mine = clipboard();
  const auto check = [&](Application& editor) {
    keyboard().type("Hi. ", milliseconds(10));
    for (const auto* const found : {"greet\n", "abs\n"}) {
      keyboard().tap(kHotKey);
      waitForMenu();
      keyboard().type(found, milliseconds(10));
      ASSERT_TRUE(waitUntil([&] { return menu() == 0; }));
      keyboard().type(" And ", milliseconds(10));  // while the snippet is still being inserted
    }
    keyboard().type("Absencezz ", milliseconds(10));
    const std::string expected = "Hi. Kind regards, Ada And be right back And be right back ";
    EXPECT_EQ(editor.textOnceItIs(expected), expected);
    EXPECT_TRUE(waitUntil([&] { return clipboard().find(mine.substr(0, mine.find('\n'))) == 0; }))
        << clipboard();
    editor.process().stop();
  };
  Mousepad mousepad(desktop());
  check(mousepad);
  Featherpad featherpad(desktop());
  check(featherpad);
}

TEST_F(DesktopMenuTest, EscapeTheHotKeyAndAClickElsewhereCloseItAndTheEditorGoesOn) {
  startQuorlo(library(), kWithHotKey);
  Mousepad editor(desktop());
  for (const auto& close : std::array<std::function<void()>, 3>{[&] { keyboard().type("x\x1b\x1b"); },
                                                                [&] { keyboard().tap(kHotKey); },
                                                                [&] { desktop().pointer().click(2, 790); }}) {
    keyboard().type("a");
    desktop().pointer().moveTo(600, 300);
    keyboard().tap(kHotKey);
    waitForMenu();
    close();
    EXPECT_TRUE(waitUntil([&] { return menu() == 0; }));
    EXPECT_TRUE(isActive(editor));
  }
  keyboard().type("b");
  EXPECT_EQ(editor.textOnceItIs("aaab"), "aaab");
}

TEST_F(DesktopMenuTest, OpensFromATrayOfTheScreenAndFromOneThatStartedAgain) {
  startQuorlo(library());
  Mousepad editor(desktop());
  std::string expected;
  for (const auto* const edge : {"bottom", "top"}) {
    auto tray = desktop().start({"trayer", "--edge", edge, "--align", "right", "--widthtype", "request"});
    const auto panel = desktop().windows().waitForWindowOf(tray.pid());
    ASSERT_TRUE(waitUntil([&] { return desktop().windows().placeOf(panel).width > 20; })) << "no icon";
    ASSERT_TRUE(waitUntil([&] {  // the icon may not be in its place yet
      const auto place = desktop().windows().placeOf(panel);
      desktop().pointer().click(place.x + place.width / 2, place.y + place.height / 2);
      return waitUntil([&] { return menu() != 0; }, milliseconds(500));
    }));
    const auto shown = desktop().windows().placeOf(menu());
    EXPECT_GE(shown.x, 0);
    EXPECT_LE(shown.x + shown.width, XorgServer::kWidth);
    EXPECT_GE(shown.y, 0);
    EXPECT_LE(shown.y + shown.height, XorgServer::kHeight);
    keyboard().type("abs\n");
    EXPECT_TRUE(isActive(editor));
    expected += "be right back";
    EXPECT_EQ(editor.textOnceItIs(expected), expected);
    tray.stop();
  }
}

TEST_F(DesktopMenuTest, OpensFromATrayOfTheBusWhoseOwnMenuSwitchesAndQuits) {
  startQuorlo(library());
  Mousepad editor(desktop());
  const auto startTray = [&] {
    const auto output = desktop().directory() / "tray";
    std::filesystem::remove(output);
    auto tray = desktop().start({STATUS_HOST}, output);
    EXPECT_TRUE(waitUntil([&] { return readFile(output).find("org.kde.") != std::string::npos; }));
    std::istringstream lines(readFile(output));
    std::getline(lines, item_);
    std::getline(lines, item_);
    return tray;
  };
  startTray().stop();
  const auto tray = startTray();
  callItem("/StatusNotifierItem", {"org.kde.StatusNotifierItem.Activate", "10", "10"});
  waitForMenu();
  keyboard().type("abs\n");
  EXPECT_EQ(editor.textOnceItIs("be right back"), "be right back");

  const auto isChecked = [&] {
    return plainMenu().find("'label': <'Abbreviations'>, 'toggle-state': <1>") != std::string::npos;
  };
  EXPECT_TRUE(isChecked());
  choose("Abbreviations");
  EXPECT_TRUE(waitUntil([&] { return !isChecked(); }));
  type("Absencezz ");
  EXPECT_EQ(editor.textOnceItIs("be right backAbsencezz "), "be right backAbsencezz ");
  choose("Quit Quorlo");
  EXPECT_EQ(quorlo().process().waitForEnd(kPatience), 0);
}

}  // namespace
}  // namespace quorlo
