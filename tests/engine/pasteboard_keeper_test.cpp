#include "engine/paste/pasteboard_keeper.h"

#include "base/log.h"
#include "engine/paste/piece_contents.h"
#include "engine/paste_test.h"
#include "store/records/snippet_type.h"

#include <algorithm>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using PasteboardKeeperTest = PasteTest;

TEST_F(PasteboardKeeperTest, TheRestoreWaitsAsLongAsThePauseBetweenParts) {
  const auto snippet = add(u"sig", u"S");
  for (const auto& [pause, wait] : {std::pair(0.0, 0.2), {0.5, 0.5}, {5.0, 1.0}}) {
    settings.setPasteBetweenSnippetPartsDelay(Seconds(pause));
    paste.pasteSnippet(snippet->text(), snippet, {}, nullptr);
    desktop.queue.advance(Seconds(0.05 + pause + wait - 0.01));
    EXPECT_EQ(desktop.pasteboard.text(), "S");
    desktop.queue.advance(Seconds(0.02));
    EXPECT_EQ(desktop.pasteboard.text(), "mine");
  }
}

TEST_F(PasteboardKeeperTest, WithoutRestoringThePieceStaysAndTheUseIsNotCounted) {
  const auto snippet = add(u"sig", u"S");
  settings.setRestorePateboardItems(false);
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.pasteboard.text(), "S ");
  EXPECT_EQ(snippet->useCount(), 0);
  EXPECT_FALSE(desktop.holdsKeys());
}

TEST_F(PasteboardKeeperTest, AnEmptyPasteboardIsNotGivenBack) {
  desktop.pasteboard.setContents({});
  add(u"sig", u"S");
  std::vector<std::string> lines;
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(lines, std::vector<std::string>{"WARNING: #3II29od"});
}

TEST_F(PasteboardKeeperTest, WithAutoPasteOffThePieceIsLeftForTheUser) {
  const auto snippet = add(u"sig", u"S");
  settings.setAutoPasteIsEnabled(false);
  desktop.typeAndWait(u"sig ");
  EXPECT_TRUE(desktop.posts.empty());
  EXPECT_EQ(desktop.pasteboard.text(), "S ");
  EXPECT_FALSE(desktop.holdsKeys());
  ASSERT_EQ(notifications.posted.size(), 1U);
  EXPECT_EQ(notifications.posted[0].title, u"Auto-Paste deactivated");
  EXPECT_EQ(notifications.posted[0].categoryIdentifier, "DoNotShowAgain");
  notifications.chooseAction();
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(notifications.posted.size(), 1U);
  // The next expansion with Auto-Paste saves what is there now.
  settings.setAutoPasteIsEnabled(true);
  desktop.pasteboard.copyFromElsewhere("newer");
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.pasteboard.text(), "newer");
}

TEST_F(PasteboardKeeperTest, AnExpansionDuringTheRestoreDelayKeepsWhatWasSavedFirst) {
  add(u"sig", u"S");
  desktop.type(u"sig ");
  desktop.queue.advance(Seconds(0.3));  // finished, not yet given back
  EXPECT_EQ(desktop.pasteboard.text(), "S ");
  desktop.type(u"sig ");
  desktop.queue.advance(Seconds(0.2));
  EXPECT_EQ(desktop.pasteboard.text(), "S ");  // the first restore was put off
  desktop.queue.settle();
  EXPECT_EQ(desktop.pasteboard.text(), "mine");
  EXPECT_EQ(desktop.text(), u"S S ");
}

TEST_F(PasteboardKeeperTest, WhatIsCopiedElsewhereMeanwhileStays) {
  add(u"q", u"<" + pressing(u"tab") + u">%clipboard%");
  settings.setPasteBetweenSnippetPartsDelay(Seconds(0.1));
  for (int step = 0; step < 12; ++step) {
    desktop.front().clear();
    desktop.pasteboard.copyFromElsewhere("older");
    desktop.type(u"q ");
    desktop.queue.advance(Seconds(0.05 * step));
    desktop.pasteboard.copyFromElsewhere("newer");
    desktop.queue.settle();
    EXPECT_EQ(desktop.pasteboard.text(), "newer") << step;
    EXPECT_EQ(desktop.text(), u"<\t>older ") << step;
  }
}

TEST_F(PasteboardKeeperTest, WhatIsCopiedBeforeTheNextExpansionIsWhatThatGivesBack) {
  add(u"sig", u"S");
  desktop.type(u"sig ");
  desktop.queue.advance(Seconds(0.3));  // finished, not yet given back
  desktop.pasteboard.copyFromElsewhere("newer");
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.text(), u"S S ");
  EXPECT_EQ(desktop.pasteboard.text(), "newer");
}

TEST_F(PasteboardKeeperTest, AnExpansionDoesNotWaitForAPictureThatIsStillBeingCopied) {
  add(u"sig", u"S");
  add(u"q", u"<%clipboard%>");
  desktop.pasteboard.makeOwnerSlow();
  desktop.typeAndWait(u"sig sig ");
  EXPECT_EQ(desktop.text(), u"S S ");
  EXPECT_EQ(desktop.pasteboard.text(), "S ");
  desktop.pasteboard.completeCopies();
  desktop.queue.settle();
  EXPECT_EQ(desktop.pasteboard.text(), "mine");

  desktop.pasteboard.makeOwnerSlow();
  desktop.type(u"q ");
  desktop.queue.advance(Seconds(2.5));
  EXPECT_EQ(desktop.text(), u"S S q");
  desktop.pasteboard.completeCopies();
  desktop.queue.settle();
  EXPECT_EQ(desktop.text(), u"S S <mine> ");
  EXPECT_EQ(desktop.pasteboard.text(), "mine");
}

TEST_F(PasteboardKeeperTest, TheUserIsToldOnceWhatCouldNotBeKept) {
  add(u"sig", u"S");
  const auto expandOver = [&](const char* contents) {
    desktop.pasteboard.copyFromElsewhere(contents);
    desktop.typeAndWait(u"sig ");
  };
  desktop.pasteboard.loseCopies(PasteboardLoss::Reason::notAnswered);
  expandOver("a picture");
  EXPECT_EQ(desktop.pasteboard.text(), "S ");
  ASSERT_EQ(notifications.posted.size(), 1U);
  EXPECT_EQ(notifications.posted[0].title, u"The clipboard was not kept");
  expandOver("another picture");
  EXPECT_EQ(notifications.posted.size(), 1U);
  desktop.pasteboard.loseCopies({});
  expandOver("text");
  EXPECT_EQ(desktop.pasteboard.text(), "text");
  desktop.pasteboard.loseCopies(PasteboardLoss::Reason::tooLarge);
  expandOver("a film");
  EXPECT_EQ(notifications.posted.size(), 2U);
}

TEST_F(PasteboardKeeperTest, WhileAQuestionIsOpenThePasteboardIsTheUsers) {
  add(u"sig", u"S");
  add(u"ask", u"%textfield:name=who:default=me:textfield% %clipboard%");
  desktop.type(u"sig ");
  desktop.queue.advance(Seconds(0.3));  // not yet given back
  prompt.thinking = Seconds(60);
  desktop.type(u"ask ");
  desktop.queue.advance(Seconds(0.06));
  EXPECT_EQ(desktop.pasteboard.text(), "mine");
  desktop.pasteboard.copyFromElsewhere("copied while asked");
  desktop.queue.settle();
  EXPECT_EQ(desktop.text(), u"S me copied while asked ");
  EXPECT_EQ(desktop.pasteboard.text(), "copied while asked");
}

TEST_F(PasteboardKeeperTest, APieceThatWasLeftBehindIsNotTakenForTheUsersContents) {
  desktop.pasteboard.setContents({});
  add(u"sig", u"S");
  add(u"q", u"<%clipboard%>");
  desktop.typeAndWait(u"sig q ");
  EXPECT_EQ(desktop.text(), u"S <> ");
}

TEST_F(PasteboardKeeperTest, AnOwnerThatRefusesItsContentsDoesNotStopTheExpansion) {
  desktop.pasteboard.loseCopies(PasteboardLoss::Reason::refused);
  add(u"sig", u"S");
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.text(), u"S ");
}

TEST(PieceContentsTest, EachTypeOffersWhatSuitsThePlaceWhereItLands) {
  AttributedString rich(u"bold\nline");
  TextAttributes bold;
  bold.bold = true;
  rich.setAttributes({0, 4}, bold);
  const auto types = [](const PasteboardItem& item) { return item.types(); };
  using Types = std::vector<PasteboardType>;

  const auto plain = pieceContents(rich, SnippetType::plainText);
  EXPECT_EQ(types(plain), Types{"text/plain;charset=utf-8"});
  EXPECT_EQ(plain.text(), "bold\nline");
  EXPECT_EQ(types(pieceContents(rich, SnippetType::code)), Types{"text/plain;charset=utf-8"});
  EXPECT_EQ(types(pieceContents(rich, SnippetType::formatted)),
            (Types{"text/html", "text/plain;charset=utf-8"}));

  AttributedString picture(u"\uFFFC ");
  TextAttributes image;
  image.image =
      ImageAttachment{std::make_shared<const std::vector<std::uint8_t>>(3, std::uint8_t{7}), "image/png"};
  picture.setAttributes({0, 1}, image);
  const auto offered = pieceContents(picture, SnippetType::image);
  EXPECT_EQ(types(offered), (Types{"image/png", "text/html"}));
  EXPECT_EQ(offered.data("image/png"), PasteboardData(3, 7));
}

}  // namespace
}  // namespace quorlo
