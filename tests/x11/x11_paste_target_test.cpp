// What the target of a paste chord is served, and how long it is waited for.
#include "x11/x11_pasteboard_fixture.h"

namespace quorlo {
namespace {

using X11PasteTargetTest = X11PasteboardTest;
using testing::ElementsAre;
using Answer = SelectionPeer::Answer;
using enum Answer::Manner;

TEST_F(X11PasteTargetTest, ServesThePieceToItsTargetAlthoughTheClipboardHasBeenRestored) {
  pasteboard_->setContents(text("piece"));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
  pasteboard_->setContents(text("restored"));
  target_.readTargets(kClipboard);
  EXPECT_EQ(readElsewhere("clipboard"), "restored");
  EXPECT_TRUE(pasteboard_->pasteTracker().hasUnreadPaste()) << "the piece has not been read";

  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece");
  EXPECT_TRUE(everythingIsRead());
  EXPECT_TRUE(waitUntil([&] { return target_.readText(kClipboard, "STRING") == "restored"; }));
}

TEST_F(X11PasteTargetTest, ATargetThatHangsGetsThePieceAndNeverTheUsersClipboard) {
  pasteIntoHangingTarget();
  // The user is impatient.
  target_.tapKey(kControlKey);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece");
  EXPECT_TRUE(waitUntil([&] { return target_.readText(kClipboard, "STRING") == "the user's password"; }));
}

TEST_F(X11PasteTargetTest, ATargetThatIgnoredTheChordReadsWhatTheUserPastesIntoItLater) {
  pasteIntoHangingTarget();
  ASSERT_TRUE(waitUntil([&] {
    target_.step();
    return target_.hasAnsweredPing();
  }));
  target_.tapKey(kPlainKey);
  target_.tapKey(kControlKey);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "the user's password");
}

// A slow target answers the ping between its two questions.
TEST_F(X11PasteTargetTest, ATargetThatHasBegunToReadGetsThePieceWhateverTheUserTypesMeanwhile) {
  pasteIntoHangingTarget();
  EXPECT_FALSE(target_.readTargets(kClipboard).empty());
  ASSERT_TRUE(waitUntil([&] {
    target_.step();
    return target_.hasAnsweredPing();
  }));
  target_.tapKey(kControlKey);
  owner_.readTargets(kClipboard);  // the server and the pasteboard have seen the key
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece");
}

TEST_F(X11PasteTargetTest, TypingAloneDoesNotMakeATargetReadTheUsersClipboard) {
  pasteIntoHangingTarget();
  ASSERT_TRUE(waitUntil([&] {
    target_.step();
    return target_.hasAnsweredPing();
  }));
  target_.tapKey(kPlainKey);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece") << "a part of the program hangs";
}

TEST_F(X11PasteTargetTest, AnotherProcessMayReadForTheTarget) {
  // Again where the other process starts so slowly that the piece does not wait for it.
  EXPECT_TRUE(waitUntil([&] {
    pasteboard_->setContents(text("piece"));
    pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
    pasteboard_->setContents(text("restored"));
    return readElsewhere("clipboard") == "piece";
  }));
  EXPECT_TRUE(everythingIsRead());
  EXPECT_EQ(readElsewhere("clipboard"), "restored");
}

TEST_F(X11PasteTargetTest, APieceIsForgottenWithTheWindowThatItWasFor) {
  pasteIntoHangingTarget();
  target_.disconnect();
  EXPECT_TRUE(waitUntil([&] { return owner_.readText(kClipboard, kUtf8) == "the user's password"; }));
}

TEST_F(X11PasteTargetTest, NobodyIsToldOfNewContentsBeforeTheTargetHasReadThePiece) {
  pasteboard_->setContents(text("piece"));
  const auto watcher = std::move(X11Pasteboard::connect(display(), queue_, {})).value();
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
  pasteboard_->setContents(text("restored"));
  EXPECT_EQ(watcher->changeCount(), 0);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece");
  EXPECT_TRUE(waitUntil([&] { return watcher->changeCount() == 1; }));
}

TEST_F(X11PasteTargetTest, TheNextChordWaitsUntilThePasteBeforeIsOver) {
  pasteboard_->setContents(text("first"));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
  std::vector<std::optional<std::string>> got;
  std::thread reader([&] {
    // As Chromium does.
    for (int i = 0; i < 3; ++i) got.push_back(target_.readText(kClipboard, kUtf8));
  });
  pasteboard_->setContents(text("second"));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
  reader.join();
  EXPECT_THAT(got, ElementsAre("first", "first", "first"));
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "second");
}

TEST_F(X11PasteTargetTest, CountsALargePieceAsReadWhenItsLastPartIs) {
  const std::string large(3'000'000, 'x');
  pasteboard_->setContents(text(large));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
  std::atomic<int> progress = 0;
  const auto observation = pasteboard_->pasteTracker().observe([&] { ++progress; });
  const auto openWhileReading = [&] { EXPECT_TRUE(pasteboard_->pasteTracker().hasUnreadPaste()); };
  pasteboard_->setContents(text("restored"));
  bool first = true;
  const auto got = target_.readText(kClipboard, kUtf8, [&] {
    if (std::exchange(first, false)) openWhileReading();
  });
  EXPECT_EQ(got, large);
  EXPECT_TRUE(everythingIsRead());
  EXPECT_GE(progress, 3);
}

}  // namespace
}  // namespace quorlo
