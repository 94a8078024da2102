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
    tracker.announce(kEditor, selection, offer, now);
  }

  // The piece that the reader is given; "current" for what everybody gets.
  std::string read(const std::string& target, const ClientIdentity& reader = kEditor,
                   bool fromPrimary = false) {
    const auto reading = tracker.readingFor(reader, fromPrimary, target, now);
    if (!reading) return "current";
    if (target != "TARGETS") tracker.delivered(reading->paste, now);
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
  EXPECT_EQ(read("UTF8_STRING", kEditorsOtherConnection), "piece");
  EXPECT_FALSE(tracker.hasUnreadPaste());
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
  const auto patienceEnds = now + PasteTracker::kPatience;
  for (; now < patienceEnds; now += 50ms) EXPECT_EQ(read("UTF8_STRING"), "piece");
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
  now += PasteTracker::kPatience;
  paste("terminal piece", PasteSelection::clipboardAndPrimary);
  EXPECT_EQ(read("UTF8_STRING", kEditor, true), "terminal piece");
}

TEST_F(PasteTrackerTest, ATargetThatNeverReadsIsGivenUp) {
  int changes = 0;
  const auto observation = tracker.observe([&] { ++changes; });
  paste("piece");
  EXPECT_EQ(tracker.closeFinished(now), now + PasteTracker::kPatience);
  now += PasteTracker::kPatience;
  EXPECT_EQ(tracker.closeFinished(now), std::nullopt);
  EXPECT_FALSE(tracker.hasUnreadPaste());
  EXPECT_EQ(changes, 2) << "announced and given up";
  EXPECT_EQ(read("UTF8_STRING"), "current");
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
