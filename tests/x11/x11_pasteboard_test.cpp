#include "x11/selection/x11_pasteboard.h"

#include "base/log.h"
#include "platform/pasteboard_contract.h"
#include "virtual_desktop/child_process.h"
#include "virtual_desktop/temp_dir.h"
#include "virtual_desktop/xorg_server.h"
#include "x11/pumped_queue.h"
#include "x11/selection_peer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace quorlo {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Answer = SelectionPeer::Answer;
using enum Answer::Manner;

const std::string kClipboard = "CLIPBOARD";
const std::string kPrimary = "PRIMARY";
const std::string kUtf8 = "UTF8_STRING";
constexpr xcb_keysym_t kPlainKey = 'a';
constexpr xcb_keysym_t kControlKey = 0xFFE3;

PasteboardData bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

// No two pieces of it are alike.
PasteboardData largeData(std::size_t size) {
  PasteboardData data(size);
  std::uint32_t state = 1;
  for (auto& byte : data) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<std::uint8_t>(state >> 24U);
  }
  return data;
}

PasteboardContents text(std::string_view utf8, std::vector<PasteboardType> markers = {}) {
  PasteboardItem item;
  item.setText(utf8);
  return {{item}, std::move(markers), false};
}

class X11PasteboardTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    directory_ = std::make_unique<TempDir>();
    server_ = std::make_unique<XorgServer>(directory_->path(), std::vector<std::string>{});
  }
  static void TearDownTestSuite() {
    server_.reset();
    directory_.reset();
  }

  void SetUp() override {
    log_ = redirectLog([this](LogLevel, std::string_view line) { lines_.emplace_back(line); });
    X11Pasteboard::Options options;
    options.pastesFromPrimary = [this] { return terminalInFront_; };
    options.readBudget = {2'000'000, std::chrono::milliseconds(500)};
    pasteboard_ = std::move(X11Pasteboard::connect(display(), queue_, options)).value();
  }

  static const std::string& display() { return server_->display(); }
  bool runUntil(const std::function<bool()>& condition) {
    return queue_.pumpUntil([&] {
      owner_.step();
      return condition();
    });
  }
  PasteboardCopy copied() {
    return copyOf(*pasteboard_, [this](const auto& condition) { return runUntil(condition); });
  }
  std::vector<PasteboardItem> read() { return copied().items; }
  // What a program of another process gets.
  std::string readElsewhere(const std::string& selection) const {
    const auto output = *directory_ / "elsewhere.txt";
    writeFile(output, "");
    ChildProcess xclip(
        {{"xclip", "-o", "-t", kUtf8, "-selection", selection}, {{"DISPLAY", display()}}, output});
    xclip.waitForEnd(kPatience);
    return readFile(output);
  }
  PasteTarget target() const { return {target_.window(), 0}; }
  // The target hangs: it takes neither keys nor answers.
  void pasteIntoHangingTarget() {
    target_.becomeActive();
    pasteboard_->setContents(text("piece"));
    pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
    pasteboard_->setContents(text("the user's password"));
    ASSERT_TRUE(everythingIsRead()) << "typed keys are held no longer";
  }
  bool everythingIsRead() {
    return waitUntil([&] { return !pasteboard_->pasteTracker().hasUnreadPaste(); });
  }

  static inline std::unique_ptr<TempDir> directory_;
  static inline std::unique_ptr<XorgServer> server_;
  PumpedQueue queue_;
  std::vector<std::string> lines_;
  Subscription log_;
  bool terminalInFront_ = false;
  std::unique_ptr<X11Pasteboard> pasteboard_;
  SelectionPeer owner_{display()};   // an application that copies
  SelectionPeer target_{display()};  // one that pastes
};

TEST_F(X11PasteboardTest, KeepsTheContract) {
  const RunUntil until = [this](const auto& condition) { return runUntil(condition); };
  expectContentsToBeReadBack(*pasteboard_, until);
  expectACopyToOutliveLaterContents(*pasteboard_, until);
  const auto copyElsewhere = [this](std::string_view text) {
    const auto before = pasteboard_->changeCount();
    owner_.own(kClipboard, {{kUtf8, {bytes(text)}}});
    ASSERT_TRUE(runUntil([&] { return pasteboard_->changeCount() != before; }));
  };
  expectOnlyUnchangedContentsToBeReplaced(*pasteboard_, copyElsewhere, until);
}

// The notice of another owner may still be on its way: the server decides who was first.
TEST_F(X11PasteboardTest, AProgramThatTakesTheClipboardAtTheSameTimeKeepsIt) {
  for (int i = 0; i < 100; ++i) {
    pasteboard_->setContents(text("piece"));
    const auto own = pasteboard_->changeCount();
    // The server's clock counts milliseconds.
    const auto later = std::chrono::steady_clock::now() + std::chrono::milliseconds(5);
    waitUntil([&] { return std::chrono::steady_clock::now() > later; });
    std::latch start(2);
    std::thread copier([&] {
      start.arrive_and_wait();
      owner_.own(kClipboard, {{kUtf8, {bytes("the user's")}}});
    });
    start.arrive_and_wait();
    std::ignore = pasteboard_->setContentsIfUnchanged(text("given back"), own);
    copier.join();
    ASSERT_EQ(owner_.ownerOf(kClipboard), "this") << i;
  }
}

TEST_F(X11PasteboardTest, OffersTextUnderEveryNameThatApplicationsAskFor) {
  pasteboard_->setContents(text("Grüße 😀", {"org.nspasteboard.TransientType"}));
  EXPECT_EQ(target_.readText(kClipboard, "text/plain;charset=utf-8"), "Grüße 😀");
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "Grüße 😀");
  EXPECT_EQ(target_.readText(kClipboard, "TEXT"), "Grüße 😀");
  EXPECT_EQ(target_.readText(kClipboard, "STRING"),
            "Gr\xFC\xDF"
            "e ?");
  EXPECT_EQ(target_.readText(kClipboard, "x-kde-passwordManagerHint"), "secret");
  EXPECT_EQ(target_.readText(kClipboard, "org.nspasteboard.TransientType"), "");
  EXPECT_EQ(target_.read(kClipboard, "image/png"), std::nullopt);
  EXPECT_EQ(target_.read(kClipboard, "TIMESTAMP")->size(), 4U);
  EXPECT_THAT(target_.readTargets(kClipboard),
              testing::IsSupersetOf(
                  {"TARGETS", "MULTIPLE", "TIMESTAMP", "STRING", "org.nspasteboard.TransientType"}));
  EXPECT_THAT(target_.readMultiple(kClipboard, {kUtf8, "image/png", "STRING"}),
              ElementsAre(true, false, true));

  pasteboard_->setContents(text("restored", {"org.nspasteboard.AutoGeneratedType"}));
  EXPECT_THAT(target_.readTargets(kClipboard), Not(Contains("x-kde-passwordManagerHint")));
}

TEST_F(X11PasteboardTest, PassesLargeDataInPiecesBothWays) {
  const auto picture = largeData(10'000'000);
  PasteboardItem item;
  item.setData("image/png", picture);
  pasteboard_->setContents({{item}, {}, false});
  EXPECT_EQ(target_.read(kClipboard, "image/png"), picture);

  const auto fits = largeData(1'900'000);
  owner_.own(kClipboard, {{"image/png", {fits, inPieces}}, {kUtf8, {bytes("small"), inPieces}}});
  const auto items = read();
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].data("image/png"), fits);
  EXPECT_EQ(items[0].text(), "small");
}

TEST_F(X11PasteboardTest, GivesBackWhatAnotherApplicationOfferedUnderTheSameNames) {
  const PasteboardData ids{1, 2, 3, 4, 5, 6, 7, 8};
  const SelectionPeer::Answers original{{kUtf8, {bytes("Grüße")}},
                                        {"STRING",
                                         {bytes("Gr\xFC\xDF"
                                                "e")}},
                                        {"TEXT", {bytes("any"), whole, "COMPOUND_TEXT"}},
                                        {"text/html", {bytes("<p>")}},
                                        {"image/png", {largeData(300'000)}},
                                        {"application/x-editor", {{0, 1, 0xFF}}},
                                        {"EDITOR_IDS", {ids, whole, "INTEGER", 32}}};
  auto offered = original;
  for (const auto* synthetic : {"PIXMAP", "image/bmp", "image/tiff", "image/x-icon", "DELETE"}) {
    offered[synthetic] = {bytes("never asked for")};
  }
  const auto countBefore = pasteboard_->changeCount();
  owner_.own(kClipboard, offered);
  const auto saved = read();
  EXPECT_NE(pasteboard_->changeCount(), countBefore);
  EXPECT_THAT(owner_.asked(),
              Not(testing::Contains(testing::AnyOf("PIXMAP", "image/bmp", "DELETE", "MULTIPLE"))));
  EXPECT_EQ(saved.at(0).text(), "Grüße");

  pasteboard_->setContents({saved, {"org.nspasteboard.AutoGeneratedType"}, false});
  for (const auto& [name, answer] : original) EXPECT_EQ(target_.read(kClipboard, name), answer.data) << name;
  EXPECT_EQ(readElsewhere("clipboard"), "Grüße");
}

// What the program does at an abbreviation, while the owner hangs until the piece is on the clipboard.
TEST_F(X11PasteboardTest, CompletesBehindAPieceWhatASlowOwnerWasAskedFor) {
  const auto picture = largeData(900'000);
  owner_.own(kClipboard, {{"image/png", {picture, inPieces}},
                          {"application/x-qt-image", {picture}},
                          {"text/rtf", {bytes("{}")}},
                          {"TEXT", {bytes("a caption")}},
                          {kUtf8, {bytes("a caption")}}});
  bool mayBeReplaced = false;
  std::optional<PasteboardCopy> copy;
  pasteboard_->read({[&] { mayBeReplaced = true; }, [&](PasteboardCopy whole) { copy = std::move(whole); }});
  ASSERT_TRUE(queue_.pumpUntil([&] { return mayBeReplaced; }));
  EXPECT_FALSE(copy);
  pasteboard_->setContents(text("piece"));
  EXPECT_EQ(readElsewhere("clipboard"), "piece");

  ASSERT_TRUE(runUntil([&] { return copy.has_value(); }));
  EXPECT_EQ(copy->items.at(0).data("image/png"), picture);
  EXPECT_EQ(copy->items.at(0).text(), "a caption");
  ASSERT_EQ(copy->losses.size(), 1U) << "the owner was not asked in time for a rare type";
  EXPECT_EQ(copy->losses[0].type, "text/rtf");
  EXPECT_THAT(owner_.asked(), Not(Contains("application/x-qt-image")));
}

TEST_F(X11PasteboardTest, AsksAnOwnerThatAnswersForEverythingBeforeItIsReplaced) {
  const auto picture = largeData(900'000);
  owner_.own(kClipboard, {{"image/png", {picture}}, {"text/rtf", {bytes("{}")}}, {kUtf8, {bytes("text")}}});
  bool mayBeReplaced = false;
  std::optional<PasteboardCopy> copy;
  pasteboard_->read({[&] { mayBeReplaced = true; }, [&](PasteboardCopy whole) { copy = std::move(whole); }});
  // The owner encodes its picture: it tells its targets and answers for nothing else.
  ASSERT_TRUE(runUntil([&] { return !owner_.asked().empty(); }));
  ASSERT_TRUE(queue_.pumpUntil([&] { return mayBeReplaced; }));
  pasteboard_->setContents(text("piece"));
  ASSERT_TRUE(runUntil([&] { return copy.has_value(); }));
  EXPECT_TRUE(copy->isWhole());
  EXPECT_EQ(copy->items.at(0).data("image/png"), picture);
  EXPECT_EQ(copy->items.at(0).data("text/rtf"), bytes("{}"));
}

TEST_F(X11PasteboardTest, AsksForOneEncodingOfAPictureAndForTheNextWhenItIsRefused) {
  owner_.own(kClipboard, {{"image/bmp", {largeData(100)}},
                          {"image/jpeg", {{}, refuse}},
                          {"image/png", {{}, refuse}},
                          {"image/tiff", {bytes("never asked for")}}});
  const auto copy = copied();
  EXPECT_TRUE(copy.isWhole());
  EXPECT_THAT(copy.items.at(0).types(), ElementsAre("image/bmp"));
  EXPECT_THAT(owner_.asked(), Not(Contains("image/tiff")));
}

TEST_F(X11PasteboardTest, SaysWhatAnOwnerDoesNotHandOver) {
  owner_.own(kClipboard,
             {{kUtf8, {bytes("text")}}, {"text/html", {{}, refuse}}, {"text/rtf", {{}, silence}}});
  auto copy = copied();
  EXPECT_FALSE(copy.isWhole());
  EXPECT_THAT(copy.items.at(0).types(), ElementsAre(kUtf8, "text/plain;charset=utf-8"));
  EXPECT_THAT(lines_,
              Contains(testing::AllOf(HasSubstr("text/html (refused"), HasSubstr("text/rtf (not handed"))));

  owner_.own(kClipboard, {{"TARGETS", {{}, silence}}});
  copy = copied();
  EXPECT_TRUE(copy.items.empty());
  EXPECT_FALSE(copy.isWhole());
  EXPECT_THAT(lines_.back(), HasSubstr("everything (not handed over in time)"));

  owner_.own(kClipboard, {{"TARGETS", {{}, refuse}}, {"STRING", {bytes("\xE4")}}});
  copy = copied();
  EXPECT_TRUE(copy.isWhole());
  EXPECT_EQ(copy.items.at(0).text(), "ä");

  owner_.own(kClipboard, {{"image/png", {largeData(2'100'000), inPieces}}, {kUtf8, {bytes("fits")}}});
  copy = copied();
  EXPECT_FALSE(copy.isWhole());
  EXPECT_THAT(copy.items.at(0).types(), ElementsAre(kUtf8, "text/plain;charset=utf-8"));
  EXPECT_THAT(lines_.back(), HasSubstr("image/png (larger"));
}

TEST_F(X11PasteboardTest, KeepsWhatCameWholeWhenTheOwnerDies) {
  for (const bool isReplaced : {false, true}) {
    SelectionPeer owner(display());
    owner.own(kClipboard,
              {{kUtf8, {bytes("whole")}}, {"image/png", {largeData(900'000), dieAfterFirstPiece}}});
    bool mayBeReplaced = false;
    std::optional<PasteboardCopy> copy;
    pasteboard_->read({[&] { mayBeReplaced = true; }, [&](PasteboardCopy part) { copy = std::move(part); }});
    ASSERT_TRUE(queue_.pumpUntil([&] {
      if (owner.asked().empty()) owner.step();
      return mayBeReplaced;
    }));
    if (isReplaced) pasteboard_->setContents(text("piece"));
    ASSERT_TRUE(queue_.pumpUntil([&] {
      owner.step();
      return copy.has_value();
    }));
    EXPECT_THAT(copy->items.at(0).types(), ElementsAre(kUtf8, "text/plain;charset=utf-8"));
    EXPECT_FALSE(copy->isWhole());
    EXPECT_THAT(lines_.back(), HasSubstr("image/png (not handed over before its owner ended"));
  }
}

TEST_F(X11PasteboardTest, AsksAProviderOnceAndOnlyWhileItsContentsStand) {
  int asked = 0;
  PasteboardItem item;
  item.setProvider("text/plain;charset=utf-8", [&] {
    ++asked;
    return bytes("provided");
  });
  pasteboard_->setContents({{item}, {}, false});
  target_.readTargets(kClipboard);
  EXPECT_EQ(asked, 0);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8, [this] { queue_.pump(); }), "provided");
  EXPECT_EQ(target_.readText(kClipboard, "TEXT"), "provided");
  EXPECT_EQ(read().at(0).text(), "provided");
  EXPECT_EQ(asked, 1);

  pasteboard_->setContents({{item}, {}, false});
  SelectionPeer early(display());
  const auto replaceOnce = [this, done = false]() mutable {
    if (!std::exchange(done, true)) pasteboard_->setContents(text("new"));
    queue_.pump();
  };
  early.read(kClipboard, kUtf8, replaceOnce);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "new");
  EXPECT_LE(asked, 2);
}

TEST_F(X11PasteboardTest, ServesThePieceToItsTargetAlthoughTheClipboardHasBeenRestored) {
  pasteboard_->setContents(text("piece"));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
  pasteboard_->setContents(text("restored"));
  target_.readTargets(kClipboard);
  EXPECT_EQ(readElsewhere("clipboard"), "restored");
  EXPECT_TRUE(pasteboard_->pasteTracker().hasUnreadPaste()) << "nobody has read the piece";

  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece");
  EXPECT_TRUE(everythingIsRead());
  EXPECT_TRUE(waitUntil([&] { return target_.readText(kClipboard, "STRING") == "restored"; }));
}

TEST_F(X11PasteboardTest, ATargetThatHangsGetsThePieceAndNeverTheUsersClipboard) {
  pasteIntoHangingTarget();
  // The user is impatient.
  target_.tapKey(kControlKey);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece");
  EXPECT_TRUE(waitUntil([&] { return target_.readText(kClipboard, "STRING") == "the user's password"; }));
}

TEST_F(X11PasteboardTest, ATargetThatIgnoredTheChordReadsWhatTheUserPastesIntoItLater) {
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
TEST_F(X11PasteboardTest, ATargetThatHasBegunToReadGetsThePieceWhateverTheUserTypesMeanwhile) {
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

TEST_F(X11PasteboardTest, TypingAloneDoesNotMakeATargetReadTheUsersClipboard) {
  pasteIntoHangingTarget();
  ASSERT_TRUE(waitUntil([&] {
    target_.step();
    return target_.hasAnsweredPing();
  }));
  target_.tapKey(kPlainKey);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece") << "a part of the program hangs";
}

TEST_F(X11PasteboardTest, AnotherProcessMayReadForTheTarget) {
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

TEST_F(X11PasteboardTest, APieceIsForgottenWithTheWindowThatItWasFor) {
  pasteIntoHangingTarget();
  target_.disconnect();
  EXPECT_TRUE(waitUntil([&] { return owner_.readText(kClipboard, kUtf8) == "the user's password"; }));
}

TEST_F(X11PasteboardTest, NobodyIsToldOfNewContentsBeforeTheTargetHasReadThePiece) {
  pasteboard_->setContents(text("piece"));
  const auto watcher = std::move(X11Pasteboard::connect(display(), queue_, {})).value();
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboard);
  pasteboard_->setContents(text("restored"));
  EXPECT_EQ(watcher->changeCount(), 0);
  EXPECT_EQ(target_.readText(kClipboard, kUtf8), "piece");
  EXPECT_TRUE(waitUntil([&] { return watcher->changeCount() == 1; }));
}

TEST_F(X11PasteboardTest, TheNextChordWaitsUntilThePasteBeforeIsOver) {
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

TEST_F(X11PasteboardTest, CountsALargePieceAsReadWhenItsLastPartIs) {
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

TEST_F(X11PasteboardTest, LendsPrimaryToTerminalsAndGivesItBack) {
  terminalInFront_ = true;
  owner_.own(kPrimary, {{kUtf8, {bytes("selected by the user")}}});
  owner_.own(kClipboard, {{kUtf8, {bytes("selected by the user")}}});
  read();
  // From both selections.
  ASSERT_TRUE(runUntil([&] { return std::ranges::count(owner_.asked(), kUtf8) == 2; }));
  pasteboard_->setContents(text("piece"));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboardAndPrimary);
  target_.readTargets(kPrimary);
  EXPECT_EQ(readElsewhere("primary"), "selected by the user");
  EXPECT_EQ(target_.readText(kPrimary, kUtf8), "piece");
  EXPECT_TRUE(everythingIsRead());
  EXPECT_EQ(readElsewhere("primary"), "selected by the user");

  // The next piece, of a paste that nobody announced by reading the pasteboard first.
  pasteboard_->setContents(text("next"));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboardAndPrimary);
  EXPECT_EQ(target_.readText(kPrimary, kUtf8), "next");
  EXPECT_EQ(readElsewhere("primary"), "selected by the user");
}

TEST_F(X11PasteboardTest, LeavesPrimaryEmptyWhereItWasEmpty) {
  ASSERT_EQ(owner_.ownerOf(kPrimary), "nobody");
  pasteboard_->setContents(text("piece"));
  pasteboard_->pasteWillBePosted(target(), PasteSelection::clipboardAndPrimary);
  EXPECT_EQ(target_.readText(kPrimary, kUtf8), "piece");
  EXPECT_TRUE(waitUntil([&] { return owner_.ownerOf(kPrimary) == "nobody"; }));
}

TEST_F(X11PasteboardTest, HandsTheClipboardToTheManagerOfTheDesktopInTheEnd) {
  pasteboard_->setContents(text("kept"));
  owner_.own("CLIPBOARD_MANAGER", {{"SAVE_TARGETS", {}}});
  std::thread manager([&] {
    waitUntil([&] {
      owner_.step();
      return !owner_.asked().empty();
    });
  });
  pasteboard_.reset();
  manager.join();
  EXPECT_THAT(owner_.asked(), ElementsAre("SAVE_TARGETS"));
}

}  // namespace
}  // namespace quorlo
