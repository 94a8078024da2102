#include "x11/selection/paste_tracker.h"

#include "x11/selection/selection_offer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using std::chrono_literals::operator""ms;

constexpr ClientIdentity kEditor{0x200000, 100};
constexpr ClientIdentity kEditorsOtherConnection{0x400000, 100};
constexpr ClientIdentity kClipboardManager{0x600000, 200};
constexpr ClientIdentity kRelay{0x800000, 300};  // reads for the editor

// A target program and the pieces pasted into it, each named by its text.
class PasteTrackerTest : public testing::Test {
 protected:
  void paste(const std::string& piece, PasteSelection selection = PasteSelection::clipboard,
             bool withHtml = false) {
    PasteboardItem item;
    if (withHtml) item.setData("text/html", {});
    item.setText(piece);
    const auto offer = std::make_shared<SelectionOffer>(offeredTargets({{item}, {}, false}, {}),
                                                        std::vector<SelectionOffer::Data>());
    names[offer.get()] = piece;
    tracker.announce({kEditor}, selection, offer, now);
  }

  // The piece that the reader is given; "current" for what everybody gets.
  std::string read(const std::string& target, const ClientIdentity& reader = kEditor,
                   bool fromPrimary = false) {
    const auto reading = tracker.readingFor(reader, fromPrimary, target, now);
    if (!reading) return "current";
    if (target != "TARGETS" && reading->paste != 0) tracker.delivered(reading->paste, now);
    return names.at(reading->offer.get());
  }

  PasteTracker tracker;
  std::map<const SelectionOffer*, std::string> names;
  PasteTracker::Instant now{std::chrono::hours(1)};
};

TEST_F(PasteTrackerTest, OnlyTheTargetsReadingOfContentsMakesAPasteRead) {
  paste("piece");
  EXPECT_EQ(read("UTF8_STRING", kClipboardManager), "current");
  EXPECT_EQ(read("TARGETS"), "piece");
  EXPECT_TRUE(tracker.hasUnreadPaste());
  EXPECT_FALSE(tracker.lastPasteWasRead());
  EXPECT_EQ(read("UTF8_STRING", kEditorsOtherConnection), "piece");
  EXPECT_FALSE(tracker.hasUnreadPaste());
  EXPECT_TRUE(tracker.lastPasteWasRead());
  EXPECT_EQ(tracker.lastProgress(), now);
}

TEST_F(PasteTrackerTest, OnePasteMayReadSeveralFormsUntilItHasBeenQuiet) {
  paste("piece");
  read("UTF8_STRING");
  now += 50ms;
  EXPECT_EQ(read("text/html"), "piece");
  now += 50ms;
  EXPECT_EQ(read("text/rtf"), "piece");
  EXPECT_TRUE(tracker.isBusy(kEditor, now));
  now += PasteTracker::kQuiet;
  EXPECT_FALSE(tracker.isBusy(kEditor, now));
  EXPECT_EQ(read("TARGETS"), "piece");
  now += PasteTracker::kLinger - 1ms;
  EXPECT_EQ(read("UTF8_STRING"), "piece");
  now += PasteTracker::kLinger;
  EXPECT_EQ(read("UTF8_STRING"), "current");
}

TEST_F(PasteTrackerTest, AProgramThatKeepsReadingDoesNotKeepAPasteOpen) {
  paste("piece");
  const auto end = now + PasteTracker::kLongestRead;
  for (; now < end; now += 50ms) EXPECT_EQ(read("UTF8_STRING"), "piece");
  EXPECT_EQ(read("UTF8_STRING"), "current");
}

TEST_F(PasteTrackerTest, TheNextChordEndsThePasteThatHasBeenRead) {
  paste("first");
  read("UTF8_STRING");
  tracker.closeDelivered(kEditorsOtherConnection);
  paste("second");
  EXPECT_EQ(read("text/html"), "second");
  tracker.closeDelivered(kClipboardManager);
  EXPECT_TRUE(tracker.hasOpenPaste());
}

TEST_F(PasteTrackerTest, EachPieceIsReadInTurnByATargetThatLagsBehind) {
  paste("first");
  paste("second");
  EXPECT_EQ(read("UTF8_STRING"), "first");
  EXPECT_EQ(read("text/html"), "first");
  EXPECT_TRUE(tracker.hasUnreadPaste());
  EXPECT_EQ(read("TARGETS"), "first");
  EXPECT_EQ(read("UTF8_STRING"), "second");
  EXPECT_EQ(read("text/html"), "second");
  EXPECT_FALSE(tracker.hasUnreadPaste());
}

TEST_F(PasteTrackerTest, ATargetIsToldOfThePieceThatItWillBeGiven) {
  paste("formatted", PasteSelection::clipboard, true);
  paste("plain");
  EXPECT_EQ(read("TARGETS"), "formatted");
  EXPECT_EQ(read("text/html"), "formatted");
  EXPECT_EQ(read("TARGETS"), "plain");
  EXPECT_EQ(read("UTF8_STRING"), "plain");
}

TEST_F(PasteTrackerTest, PrimaryHoldsThePieceOnlyForPastesFromThere) {
  paste("piece");
  EXPECT_EQ(read("UTF8_STRING", kEditor, true), "current");
  EXPECT_FALSE(tracker.hasOpenPasteFromPrimary());
  tracker.closeLate(false);
  read("UTF8_STRING");
  tracker.closeDelivered(kEditor);
  paste("terminal piece", PasteSelection::clipboardAndPrimary);
  EXPECT_EQ(read("UTF8_STRING", kEditor, true), "terminal piece");
}

TEST_F(PasteTrackerTest, ABusyTargetIsNotAwaitedForeverButServedWheneverItReads) {
  int changes = 0;
  const auto observation = tracker.observe([&] { ++changes; });
  paste("piece");
  EXPECT_EQ(tracker.closeFinished(now), now + ReaderHabits::kPatience);
  now += ReaderHabits::kPatience;
  EXPECT_EQ(tracker.closeFinished(now), std::nullopt);
  EXPECT_FALSE(tracker.hasUnreadPaste() || tracker.hasPasteUnderWay() || tracker.isBusy(kEditor, now));
  EXPECT_EQ(changes, 2) << "announced and late";
  now += std::chrono::minutes(10);
  EXPECT_EQ(read("UTF8_STRING", kClipboardManager), "current");
  EXPECT_EQ(read("TARGETS"), "piece");
  EXPECT_EQ(read("UTF8_STRING"), "piece");
  now += PasteTracker::kLinger - 1ms;
  EXPECT_EQ(read("text/html"), "piece") << "Chromium asks again";
  now += PasteTracker::kLinger;
  EXPECT_EQ(read("UTF8_STRING"), "current");
}

TEST_F(PasteTrackerTest, ALatePasteEndsWhenItsTargetIsNoLongerMeant) {
  paste("piece");
  now += ReaderHabits::kPatience;
  tracker.closeFinished(now);
  ASSERT_EQ(tracker.latePastes().size(), 1U);
  tracker.closeLate(true);
  tracker.close(tracker.latePastes()[0].paste + 1);
  EXPECT_TRUE(tracker.hasOpenPaste());
  tracker.close(tracker.latePastes()[0].paste);
  EXPECT_EQ(read("UTF8_STRING"), "current");
}

TEST_F(PasteTrackerTest, AReadOnBehalfOfTheTargetEndsTheWait) {
  paste("piece");
  now += PasteTracker::kEarliestRead;
  EXPECT_FALSE(tracker.lastPasteWasRead());
  EXPECT_EQ(read("UTF8_STRING", kRelay), "piece");
  EXPECT_FALSE(tracker.hasUnreadPaste());
  EXPECT_TRUE(tracker.lastPasteWasRead());
  EXPECT_EQ(read("UTF8_STRING", kRelay), "current");
  EXPECT_EQ(read("UTF8_STRING"), "piece") << "it may have read for itself";
}

TEST_F(PasteTrackerTest, AClipboardManagerDoesNotReadForATarget) {
  tracker.contentsChanged(now);
  EXPECT_EQ(read("UTF8_STRING", kClipboardManager), "current") << "before the chord";
  paste("piece");
  EXPECT_EQ(read("UTF8_STRING", kRelay), "current") << "sooner than any application reads";
  now += 20ms;
  EXPECT_EQ(read("UTF8_STRING", kClipboardManager), "current");
  EXPECT_EQ(read("UTF8_STRING", kRelay), "current");
  EXPECT_TRUE(tracker.hasUnreadPaste());
}

TEST_F(PasteTrackerTest, AProgramThatDoesNotReadIsAwaitedBrieflyUntilItDoes) {
  for (int i = 0; i < 2; ++i) {
    paste("piece");
    EXPECT_EQ(tracker.closeFinished(now), now + ReaderHabits::kPatience);
    now += ReaderHabits::kPatience;
    tracker.closeFinished(now);
    tracker.closeLate(false);
  }
  paste("piece");
  EXPECT_EQ(tracker.closeFinished(now), now + ReaderHabits::kShortPatience);
  EXPECT_EQ(read("UTF8_STRING"), "piece");
  now += PasteTracker::kLinger;
  tracker.closeFinished(now);
  paste("piece");
  EXPECT_EQ(tracker.closeFinished(now), now + ReaderHabits::kPatience);
}

TEST_F(PasteTrackerTest, APasteThatIsNoLongerAwaitedIsServedAndKeepsTheNextOneBackNoMore) {
  paste("one");
  tracker.stopAwaiting(tracker.lastPaste());
  EXPECT_FALSE(tracker.hasUnreadPaste() || tracker.isBusy(kEditor, now));
  EXPECT_TRUE(tracker.hasPasteUnderWay()) << "others are not told of new contents yet";
  EXPECT_TRUE(tracker.latePastes().empty());
  paste("two");
  EXPECT_TRUE(tracker.hasUnreadPaste());
  EXPECT_EQ(read("UTF8_STRING"), "one");
  EXPECT_EQ(read("UTF8_STRING"), "two");
  tracker.closeFinished(now += PasteTracker::kLinger);
  paste("large");
  tracker.progressed(tracker.readingFor(kEditor, false, "image/png", now)->paste, now += 10ms);
  tracker.stopAwaiting(tracker.lastPaste());
  EXPECT_TRUE(tracker.hasUnreadPaste()) << "it is being read";
}

TEST_F(PasteTrackerTest, ASlowTransferThatMovesOnIsWaitedFor) {
  paste("large");
  const auto reading = tracker.readingFor(kEditor, false, "image/png", now);
  ASSERT_TRUE(reading);
  for (int i = 0; i < 4; ++i) {
    now += 1500ms;
    tracker.progressed(reading->paste, now);
    tracker.closeFinished(now);
    EXPECT_TRUE(tracker.hasUnreadPaste());
  }
  tracker.delivered(reading->paste, now);
  EXPECT_FALSE(tracker.hasUnreadPaste());
}

}  // namespace
}  // namespace quorlo
