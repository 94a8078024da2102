// An expansion hits the window it was meant for, whole or not at all.
#include "desktop/quorlo_desktop_test.h"

#include <xcb/xcb.h>

#include <functional>

namespace quorlo {
namespace {

class DesktopTargetTest : public QuorloDesktopTest {
 protected:
  // Types while the X server serves this process alone, so that Quorlo's expansion comes to a halt before it
  // erases, and does `meanwhile` before the server serves others again.
  void typeAndThenAtOnce(std::string_view text, const std::function<void()>& meanwhile) {
    auto* connection = desktop().connection();
    xcb_grab_server(connection);
    xcb_flush(connection);
    type(text);
    meanwhile();
    xcb_ungrab_server(connection);
    xcb_flush(connection);
  }
  void focus(const Application& application) {
    xcb_set_input_focus(desktop().connection(), XCB_INPUT_FOCUS_PARENT, application.window(),
                        XCB_CURRENT_TIME);
  }
  bool wrote(std::string_view text) { return quorlo().log().find(text) != std::string::npos; }
};

TEST_F(DesktopTargetTest, AWindowThatTakesTheFocusLosesNoCharacterAndGetsWhatIsTyped) {
  startQuorlo();
  Xterm other(desktop(), "other");
  type("sig ");
  EXPECT_EQ(other.textOnceItIs("Kind regards, Ada "), "Kind regards, Ada ");
  Xterm first(desktop(), "first");
  type("brb");
  EXPECT_EQ(first.textOnceItIs("brb"), "brb");
  typeAndThenAtOnce(" then ", [&] { focus(other); });
  type("sig .");
  const std::string expected = "Kind regards, Ada  then Kind regards, Ada .";
  EXPECT_EQ(other.textOnceItIs(expected), expected);
  EXPECT_EQ(first.text(), "brb");
}

TEST_F(DesktopTargetTest, AWindowThatClosesTakesTheExpansionWithIt) {
  startQuorlo();
  Xterm other(desktop(), "other");
  type("sig ");
  EXPECT_EQ(other.textOnceItIs("Kind regards, Ada "), "Kind regards, Ada ");
  {
    Xterm first(desktop(), "first");
    type("brb");
    EXPECT_EQ(first.textOnceItIs("brb"), "brb");
    typeAndThenAtOnce(" ", [&] { xcb_kill_client(desktop().connection(), first.window()); });
    EXPECT_TRUE(waitUntil([&] { return desktop().windows().active() == other.window(); }));
  }
  type("brb .");
  // The delimiter goes where the keys go, if they go anywhere at that moment.
  EXPECT_TRUE(waitUntil([&] { return other.text().ends_with("be right back ."); })) << other.text();
  EXPECT_TRUE(other.text() == "Kind regards, Ada be right back ." ||
              other.text() == "Kind regards, Ada  be right back .")
      << other.text();
}

TEST_F(DesktopTargetTest, AnExpansionThatComesToAHaltErasesNothingBehindWhatWasTypedSince) {
  startQuorlo();
  Xterm editor(desktop());
  type("brb");
  EXPECT_EQ(editor.textOnceItIs("brb"), "brb");
  typeAndThenAtOnce(" two",
                    [&] { EXPECT_TRUE(waitUntil([&] { return wrote("Typed keys were held for 2 s"); })); });
  EXPECT_TRUE(waitUntil([&] { return wrote("the abbreviation was erased; it stays"); }));
  EXPECT_EQ(editor.textOnceItIs("brb two"), "brb two");
}

TEST_F(DesktopTargetTest, KeysAreHeldThroughLongPausesBetweenPieces) {
  startQuorlo(libraryOf({{"mm", "one%specialKey:value=return:specialKey%two"}}),
              {{"PasteBetweenSnippetPartsDelay", "2.2"}});
  const auto editor = openRichEditor();
  type("mm abc");
  EXPECT_EQ(editor->textOnceItIs("one\ntwo abc"), "one\ntwo abc");
}

TEST_F(DesktopTargetTest, APieceIsNotPastedIntoAnotherWindow) {
  startQuorlo(libraryOf({{"mm", "one%specialKey:value=tab:specialKey%two"}}),
              {{"PasteBetweenSnippetPartsDelay", "3"}});
  Xterm other(desktop(), "other");
  Xterm editor(desktop(), "editor");
  type("mm abc");
  EXPECT_EQ(editor.textOnceItIs("one"), "one");
  other.activate();
  EXPECT_TRUE(waitUntil([&] { return wrote("Keys no longer reach the window"); }));
  EXPECT_EQ(other.textOnceItIs("abc"), "abc");
  EXPECT_EQ(editor.text(), "one");
}

}  // namespace
}  // namespace quorlo
