#include "engine/expansion_undo.h"

#include "engine/expansion_world.h"
#include "text/utf.h"

#include <functional>
#include <vector>

namespace quorlo {
namespace {

using ExpansionUndoTest = ExpansionWorld;

TEST_F(ExpansionUndoTest, BackspaceRightAfterAnExpansionGivesBackWhatWasTyped) {
  add(u"sig", u"Kind regards,\nAda");
  desktop.pasteboard.setContents({{}, {}, false});
  desktop.typeAndWait(u"x sig ");
  EXPECT_EQ(desktop.text(), u"x Kind regards,\nAda ");
  const auto pasteboardBefore = desktop.pasteboard.changeCount();
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"x sig ");
  EXPECT_EQ(desktop.pasteboard.changeCount(), pasteboardBefore);
  // The next Backspace is an ordinary one, and the abbreviation stays one until it is typed anew.
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"x sig");
  desktop.typeAndWait(u" sig ");
  EXPECT_EQ(desktop.text(), u"x sig Kind regards,\nAda ");
}

TEST_F(ExpansionUndoTest, ABackspaceTypedDuringTheExpansionTakesItBack) {
  add(u"sig", u"Kind regards");
  desktop.typeAndWait(u"sig \bx");
  EXPECT_EQ(desktop.text(), u"sig x");
}

TEST_F(ExpansionUndoTest, WhatTheTriggerSwallowedComesBackUnlessItWouldActAgain) {
  add(u"sig", u"Kind regards");
  settings.setRemoveTriggerKey(true);
  settings.setAbbreviationDelimiterKey(DelimiterKeys(1 | 2 | 4 | 0x2000));
  desktop.typeAndWait(u"sig,");
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"sig,");
  desktop.typeAndWait(u" sig\n");
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"sig, sig");
  desktop.typeAndWait(u"\n");
  EXPECT_EQ(desktop.text(), u"sig, sig\n") << "the next delimiter passes";
  useLastSymbol();
  desktop.typeAndWait(u"sig");
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"sig, sig\nsig");
}

TEST_F(ExpansionUndoTest, AnythingElseBeforeTheBackspaceEndsTheOffer) {
  add(u"sig", u"S");
  auto& editor = desktop.front();
  const std::vector<std::function<void()>> interruptions{
      [&] { desktop.type(u"x"); },
      [&] { desktop.press(key::kLeftArrow, 0, {kLeftArrowCharacter}); },
      [&] { desktop.press(key::kBackspace, modifier::kCommand, u"\x7f"); },
      [&] { desktop.clickMouse(); },
      [&] { desktop.clickMouse(MouseButton::other); },
      [&] { desktop.timeOutTap(); },
      [&] { desktop.queue.advance(ExpansionUndo::kOfferLife + Seconds(1)); },
      [&] { desktop.launch("org.example.Other"); },
      [&] { desktop.setObstacle(TypingObstacle::passwordField); },
      [&] { paste.pasteSnippet(AttributedString(u"menu"), add(u"", u"menu"), {}, {}); },
  };
  for (std::size_t i = 0; i < interruptions.size(); ++i) {
    desktop.typeAndWait(u"sig ");
    interruptions[i]();
    desktop.queue.settle();
    desktop.typeAndWait(u"\b");
    desktop.activate(&editor);
    desktop.setObstacle({});
    EXPECT_EQ(editor.text.find(u"sig"), std::u16string::npos) << i;
    editor.caret = editor.text.size();
    desktop.typeAndWait(u" ");
  }
}

TEST_F(ExpansionUndoTest, AClickBeforeThePauseAfterThePieceIsOverEndsTheOfferToo) {
  add(u"sig", u"S");
  desktop.type(u"sig ");
  desktop.queue.advance(Seconds(0.1));
  desktop.clickMouse();
  desktop.queue.settle();
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"S");
}

TEST_F(ExpansionUndoTest, WhereTheErasingCouldHitOtherTextBackspaceIsJustABackspace) {
  add(u"cur", u"(%cursor%)");
  add(u"key", u"a%specialKey:value=tab:specialKey%b");
  add(u"clip", u"a%clipboard%");
  desktop.pasteboard.setContents({{}, {}, false});
  for (const auto* const abbreviation : {u"cur ", u"key ", u"clip "}) {
    desktop.front().text.clear();
    desktop.front().caret = 0;
    desktop.typeAndWait(abbreviation);
    const auto size = desktop.text().size();
    desktop.typeAndWait(u"\b");
    EXPECT_EQ(desktop.text().size() + 1, size) << toUtf8(abbreviation);
  }
  const std::u16string longest(kLongestUndo, u'x');
  EXPECT_EQ(backspacesFor(u"Grüße \U0001F600\n!"), 9);
  EXPECT_EQ(backspacesFor(u"a\n "), 3);
  EXPECT_EQ(backspacesFor(longest), static_cast<int>(kLongestUndo));
  for (const auto& text : {longest + u"x", std::u16string(u"e\u0301"), std::u16string(u"a\tb"),
                           std::u16string(u"if:\n  x"), std::u16string(u"a\uFFFC"), std::u16string()}) {
    EXPECT_EQ(backspacesFor(text), std::nullopt) << toUtf8(text);
  }
}

TEST_F(ExpansionUndoTest, NothingIsErasedThatNobodyReadOrThatTheLayoutCannotTypeAgain) {
  add(u"sig", u"S");
  desktop.removeKeyOf(u'g');
  desktop.typeAndWait(u"sig ");
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"S");
  desktop.leavePiecesUnread();
  add(u"brb", u"be right back");
  desktop.typeAndWait(u" brb ");
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"S be right back");
}

TEST_F(ExpansionUndoTest, WhereTextOvertakesKeysItIsTypedAfterAPauseAndOtherKeysWait) {
  desktop.front().profile.pauseAfterCaretMoves = Seconds(0.2);
  add(u"sig", u"Kind regards");
  desktop.typeAndWait(u"sig ");
  desktop.type(u"\b");
  desktop.queue.advance(Seconds(0.1));
  desktop.type(u"x");
  EXPECT_EQ(desktop.text(), u"");
  desktop.queue.settle();
  EXPECT_EQ(desktop.text(), u"sig x");
}

TEST_F(ExpansionUndoTest, AnExpansionTakenBackDoesNotCount) {
  const auto snippet = add(u"sig", u"Kind regards");
  const auto user = context.insert<QLUser>();
  user->setWordsPerMinute(50);
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(snippet->useCount(), 1);
  EXPECT_EQ(user->savedChars(), 9);
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(snippet->useCount(), 0);
  EXPECT_EQ(user->savedChars(), 0);
  EXPECT_DOUBLE_EQ(user->savedMinutes(), 0);
}

TEST_F(ExpansionUndoTest, ItIsASetting) {
  add(u"sig", u"Kind regards");
  settings.setUndoExpansionWithBackspace(false);
  desktop.typeAndWait(u"sig ");
  desktop.typeAndWait(u"\b");
  EXPECT_EQ(desktop.text(), u"Kind regards");
}

}  // namespace
}  // namespace quorlo
