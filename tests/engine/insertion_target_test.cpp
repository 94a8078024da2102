// Where a snippet goes: the window it was meant for, in the way its application takes text.
#include "engine/paste_test.h"

#include <algorithm>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using InsertionTargetTest = PasteTest;

TEST_F(InsertionTargetTest, PausesBetweenPiecesDoNotEndTheHold) {
  add(u"m", u"one" + pressing(u"return") + u"two" + pressing(u"return") + u"three");
  settings.setPasteBetweenSnippetPartsDelay(Seconds(5));
  desktop.typeAndWait(u"m abc");
  EXPECT_EQ(desktop.text(), u"one\ntwo\nthree abc");
}

TEST_F(InsertionTargetTest, AfterKeysHadToBeDeliveredNothingIsErased) {
  const auto snippet = add(u"sig", u"S");
  add(u"ask", u"%textfield:name=who:default=me:textfield%");
  for (const bool lastSymbol : {false, true}) {
    if (lastSymbol) useLastSymbol();
    desktop.front().clear();
    desktop.type(u"sig two");
    desktop.queue.advance(Seconds(0.04));
    desktop.breakHold();
    EXPECT_EQ(desktop.text(), u"sig two");
    desktop.queue.settle();
    EXPECT_EQ(desktop.text(), u"sig two");
    EXPECT_EQ(desktop.pasteboard.text(), "mine");
    EXPECT_EQ(desktop.pasteboard.changeCount(), 1);
    EXPECT_EQ(snippet->useCount(), 0);
  }
  desktop.front().clear();
  desktop.type(u"ask");
  desktop.breakHold();
  desktop.queue.settle();
  EXPECT_EQ(desktop.text(), u"ask");
  // Nothing is left over for the next one.
  desktop.typeAndWait(u" sig");
  EXPECT_EQ(desktop.text(), u"ask S");
}

TEST_F(InsertionTargetTest, WhenAnotherWindowHasTheKeysByThenNothingIsErasedAndTheyGoThere) {
  const auto snippet = add(u"sig", u"S");
  auto& editor = desktop.front();
  auto& other = desktop.launch("org.example.Other");
  for (const bool lastSymbol : {false, true}) {
    if (lastSymbol) useLastSymbol();
    for (int step = 0; step < 5; ++step) {
      editor.clear();
      other.clear();
      desktop.activate(&editor);
      desktop.type(lastSymbol ? u"sigx" : u"sig x");
      desktop.queue.advance(Seconds(0.01 * step));
      desktop.activate(&other);
      desktop.type(u"y");
      desktop.queue.settle();
      EXPECT_EQ(editor.text, lastSymbol ? u"si" : u"sig");
      EXPECT_EQ(other.text, lastSymbol ? u"gxy" : u" xy");
    }
  }
  EXPECT_TRUE(desktop.posts.empty());
  EXPECT_EQ(desktop.pasteboard.changeCount(), 1);
  EXPECT_EQ(snippet->useCount(), 0);
  desktop.typeAndWait(u" sig");
  EXPECT_EQ(other.text, u"gxy S");
}

TEST_F(InsertionTargetTest, ATargetThatClosesTakesNothingWithIt) {
  add(u"sig", u"S");
  auto& other = desktop.front();
  other.text = u"Kind regards";
  auto& dialog = desktop.launch("org.example.Dialog");
  desktop.type(u"sig ");
  desktop.close(dialog);
  desktop.queue.advance(Seconds(0.1));
  desktop.activate(&other);
  desktop.queue.settle();
  EXPECT_TRUE(desktop.posts.empty());
  EXPECT_EQ(other.text, u"Kind regards");
  // Where only the window manager is missing for a moment, the expansion goes on.
  desktop.type(u"sig ");
  desktop.activate(nullptr);
  desktop.queue.settle();
  EXPECT_EQ(desktop.posts.size(), 2U);
}

TEST_F(InsertionTargetTest, NoPieceAndNoKeyReachesAnotherWindowHalfway) {
  const auto snippet = add(u"m", u"one" + pressing(u"tab") + u"two" + pressing(u"tab") + u"th%cursor%ree");
  settings.setPasteBetweenSnippetPartsDelay(Seconds(0.1));
  auto& other = desktop.front();
  auto& editor = desktop.launch("org.example.Editor2");
  for (int step = 1; step < 9; ++step) {
    editor.clear();
    other.clear();
    desktop.activate(&editor);
    desktop.type(u"m x");
    desktop.queue.advance(Seconds(0.01 + 0.06 * step));
    desktop.activate(&other);
    desktop.queue.settle();
    EXPECT_EQ(other.text, u"x") << step;
    EXPECT_EQ(std::u16string(u"one\ttwo\tthree ").substr(0, editor.text.size()), editor.text) << step;
    EXPECT_EQ(desktop.pasteboard.text(), "mine") << step;
    EXPECT_EQ(snippet->useCount(), editor.text.ends_with(u"three ") ? 1 : 0) << step;
    snippet->setUseCount(0);
  }
}

TEST_F(InsertionTargetTest, AKeyOfTheSnippetMayOpenTheWindowOfTheNextPiece) {
  add(u"m", u"one%specialKey:value=combi:code=45:modFlags=1048576:specialKey%two");
  settings.setPasteBetweenSnippetPartsDelay(Seconds(0.1));
  desktop.type(u"m ");
  desktop.queue.advance(Seconds(0.2));  // the chord has been pressed
  const auto& opened = desktop.launch("org.example.Editor");
  desktop.queue.settle();
  EXPECT_EQ(opened.text, u"two ");
}

TEST_F(InsertionTargetTest, OurOwnWindowsStepAsideForThePaste) {
  const auto snippet = add(u"sig", u"S");
  ownApplication.openWindow();
  ownApplication.setActivationPolicy(ActivationPolicy::regular);
  paste.pasteSnippet(snippet->text(), snippet, {}, nullptr);
  desktop.queue.advance(Seconds(0.06));
  EXPECT_FALSE(ownApplication.hasVisibleWindows());
  // A second snippet before they are back keeps them away.
  desktop.queue.advance(Seconds(0.25));
  paste.pasteSnippet(snippet->text(), snippet, {}, nullptr);
  desktop.queue.advance(Seconds(0.3));
  EXPECT_FALSE(ownApplication.hasVisibleWindows());
  EXPECT_EQ(ownApplication.activationPolicy(), ActivationPolicy::accessory);
  desktop.queue.settle();
  EXPECT_TRUE(ownApplication.hasVisibleWindows());
  EXPECT_EQ(ownApplication.activationPolicy(), ActivationPolicy::regular);
}

TEST_F(InsertionTargetTest, AnApplicationThatDoesNotPasteIsTypedInto) {
  desktop.front().profile.method = InsertionMethod::type;
  add(u"sig", u"one\ntwo\tthree");
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.text(), u"one\ntwo\tthree ");
  EXPECT_TRUE(desktop.front().pasted.empty());
  desktop.removeKeyOf(u'w');  // such a piece can only be pasted
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.front().pasted.size(), 1U);
}

TEST_F(InsertionTargetTest, AnApplicationMayBeLeftAlone) {
  desktop.front().profile.method = InsertionMethod::none;
  add(u"sig", u"S");
  desktop.typeAndWait(u"sig ");
  useLastSymbol();
  desktop.typeAndWait(u"sig");
  EXPECT_EQ(desktop.text(), u"sig sig");
  desktop.launch("org.example.Other");
  desktop.typeAndWait(u"sig");
  EXPECT_EQ(desktop.text(), u"S");
}

TEST_F(InsertionTargetTest, KeysTypedMeanwhileWaitForTheApplicationToMoveItsCaret) {
  desktop.front().profile.pauseAfterCaretMoves = Seconds(0.2);
  settings.setPasteBetweenSnippetPartsDelay(Seconds(0));
  add(u"sig", u"[%cursor%]");
  add(u"brb", u"back");
  desktop.type(u"sig x");
  desktop.queue.advance(Seconds(0.15));
  EXPECT_EQ(desktop.posts.back(), (FakeDesktop::Post{key::kLeftArrow, 0, PostLocation::annotatedSession, 2}));
  EXPECT_TRUE(desktop.holdsKeys());
  desktop.queue.advance(Seconds(0.2));
  EXPECT_FALSE(desktop.holdsKeys());
  EXPECT_EQ(desktop.text(), u"[x] ");
  desktop.type(u" brb ");
  desktop.queue.advance(Seconds(0.15));
  EXPECT_FALSE(desktop.holdsKeys()) << "no caret was moved";
}

TEST_F(InsertionTargetTest, KeysAreCountedByWhatTheToolkitErasesAndPasses) {
  desktop.pasteboard.copyFromElsewhere("e\u0301\U0001F468\u200D\U0001F469");
  add(u"e\u0301x", u"[%cursor%%clipboard%\U0001F600]");
  for (const auto toolkit : {Toolkit::qt, Toolkit::gtk}) {
    desktop.front().toolkit = toolkit;
    desktop.posts.clear();
    desktop.typeAndWait(u" e\u0301x ");
    EXPECT_EQ(desktop.posts.front().count, toolkit == Toolkit::qt ? 3 : 2);
    EXPECT_EQ(desktop.posts.back().code, key::kLeftArrow);
    EXPECT_EQ(desktop.posts.back().count, 5)
        << "two from the clipboard, one picture, a bracket, the delimiter";
  }
}

}  // namespace
}  // namespace quorlo
