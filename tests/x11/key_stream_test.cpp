#include "x11/keyboard/key_stream.h"

#include "x11/keyboard/tap_conversation.h"
#include "x11/pumped_queue.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <functional>
#include <future>
#include <string>

namespace quorlo {
namespace {

constexpr XKeycode kA = 38, kB = 56, kG = 42, kShift = 50;

// What the applications see: "a" for a press, "^a" for a release.
class KeyStreamTest : public ::testing::Test, KeyStream::Output, KeyStream::Judge {
 protected:
  void key(PhysicalKey::Kind kind, XKeycode keycode, std::uint16_t device = 9) {
    stream.handle({kind, device, keycode});
  }
  void down(XKeycode keycode, std::uint16_t device = 9) { key(PhysicalKey::Kind::press, keycode, device); }
  void up(XKeycode keycode, std::uint16_t device = 9) { key(PhysicalKey::Kind::release, keycode, device); }
  void tap(XKeycode keycode) {
    down(keycode);
    up(keycode);
  }
  void endHold() {
    stream.endHold();
    stream.drain();
  }

  KeyReader::Locks serverLocks;
  std::string log;
  std::u16string judged, repeated;
  std::function<TapVerdict(const std::u16string&)> judge = [](const std::u16string&) {
    return TapVerdict::pass;
  };
  KeyStream stream{*this, *this, KeyReader(KeyMap::named("us", "", "").value(), "C")};

 private:
  static std::string name(XKeycode keycode) {
    std::array<char, 32> text{};
    xkb_keysym_get_name(KeyMap::named("us", "", "")->keysym(keycode, 0), text.data(), text.size());
    return text.data();
  }
  void press(XKeycode keycode) override { log += name(keycode) + " "; }
  void release(XKeycode keycode) override { log += "^" + name(keycode) + " "; }
  void flush() override {}
  KeyReader::Locks locks() override { return serverLocks; }
  TapVerdict keyPressed(const KeyDownEvent& event) override {
    judged += event.characters;
    return judge(event.characters);
  }
  void keyRepeated(const KeyDownEvent& event) override { repeated += event.characters; }
};

TEST_F(KeyStreamTest, AKeyThatIsDownOnTwoKeyboardsIsLetGoWithTheLastOfThem) {
  down(kA, 9);
  down(kA, 10);
  up(kA, 9);
  EXPECT_EQ(log, "a ^a a ");
  up(kA, 10);
  EXPECT_EQ(log, "a ^a a ^a ");
}

TEST_F(KeyStreamTest, WithStickyKeysTheServerTellsAfterEachKeyWhatHoldsForTheNext) {
  stream.setStickyKeys(true);
  serverLocks.latchedModifiers = 1;  // the server's answer to the Shift that was tapped
  tap(kShift);
  serverLocks = {};
  tap(kA);
  tap(kB);
  EXPECT_EQ(judged, u"Ab");
}

TEST_F(KeyStreamTest, ASwallowedKeyComesBackAheadOfTheQueueUnlessItIsKept) {
  for (const bool kept : {true, false}) {
    log.clear();
    HoldId hold = 0;
    judge = [&](const std::u16string& characters) {
      if (characters != u"A") return TapVerdict::pass;
      hold = stream.beginHold();
      return TapVerdict::swallow;
    };
    down(kShift);
    tap(kA);
    up(kShift);
    tap(kB);
    if (kept) {
      EXPECT_TRUE(stream.keepTrigger(hold));
    }
    endHold();
    EXPECT_EQ(log, kept ? "Shift_L ^Shift_L b ^b " : "Shift_L ^Shift_L Shift_L a ^a ^Shift_L b ^b ");
    EXPECT_FALSE(stream.keepTrigger(hold));
  }
}

TEST_F(KeyStreamTest, AHoldThatEndsWhileItsKeyIsStillJudgedGivesTheKeyBackToo) {
  judge = [&](const std::u16string& characters) {
    stream.beginHold();
    stream.endHold();
    return characters == u"a" ? TapVerdict::swallow : TapVerdict::pass;
  };
  tap(kA);
  tap(kB);
  EXPECT_EQ(log, "a ^a b ^b ");
}

TEST_F(KeyStreamTest, AModifierReleasedDuringAHoldIsPressedAgainOnlyIfAKeyNeedsIt) {
  for (const bool used : {false, true}) {
    log.clear();
    down(kShift);
    stream.beginHold();
    if (used) tap(kA);
    up(kShift);
    tap(kB);
    endHold();
    EXPECT_EQ(log, used ? "Shift_L ^Shift_L Shift_L a ^a ^Shift_L b ^b " : "Shift_L ^Shift_L b ^b ");
  }
  EXPECT_EQ(judged, u"bAb");
}

TEST_F(KeyStreamTest, AHoldThatBeginsWhileAKeyIsJudgedKeepsThatKeyFirst) {
  judge = [this](const std::u16string& typed) {
    if (typed == u"g") stream.beginHold();
    return TapVerdict::pass;
  };
  tap(kG);
  tap(kA);
  EXPECT_EQ(log, "");
  endHold();
  EXPECT_EQ(log, "g ^g a ^a ");
  EXPECT_EQ(judged, u"ga") << "nothing is judged twice";
}

TEST_F(KeyStreamTest, RepeatsAreReportedForKeysThatApplicationsSeeHeldOnly) {
  judge = [](const std::u16string& typed) { return typed == u"g" ? TapVerdict::swallow : TapVerdict::pass; };
  for (const auto keycode : {kA, kG}) {
    down(keycode);
    key(PhysicalKey::Kind::repeat, keycode);
    key(PhysicalKey::Kind::repeat, keycode);
    up(keycode);
  }
  stream.beginHold();
  down(kB);
  for (int i = 0; i < 50; ++i) key(PhysicalKey::Kind::repeat, kB);
  endHold();
  EXPECT_EQ(repeated, u"aa");
  EXPECT_EQ(log, "a ^a b ") << "the server repeats by itself";
}

TEST_F(KeyStreamTest, AnUnpluggedKeyboardLetsItsKeysGo) {
  stream.begin({{9, kShift}, {9, kA}, {10, kB}});
  EXPECT_EQ(log, "Shift_L ");
  down(kG, 10);
  stream.keepOnly({{10, kG}});
  EXPECT_EQ(log, "Shift_L g ^Shift_L ");
}

// The thread with the keys asks; the test is the main thread.
class TapConversationTest : public ::testing::Test {
 protected:
  std::future<TapVerdict> ask() {
    return std::async(std::launch::async, [this] { return conversation->ask({.characters = u"a"}); });
  }
  bool isAsked() {
    return waitUntil([this] {
      queue.pump();
      return !calls.empty();
    });
  }

  std::string calls;
  std::function<void()> during = [] {};
  PumpedQueue queue;
  std::shared_ptr<TapConversation> conversation = std::make_shared<TapConversation>(
      queue,
      [](TapEventType type, const KeyDownEvent*, void* userInfo) {
        auto& self = *static_cast<TapConversationTest*>(userInfo);
        self.calls += type == TapEventType::keyDown ? "key " : "timeout ";
        if (type == TapEventType::keyDown) self.during();
        return TapVerdict::swallow;
      },
      this);
};

TEST_F(TapConversationTest, AnAnswerThatComesTooLateIsIgnoredAndTheTimeoutIsToldOnce) {
  during = [this] { waitUntil([this] { return !conversation->isEnabled(); }); };
  auto verdict = ask();
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(verdict.get(), TapVerdict::pass);
  EXPECT_EQ(calls, "key timeout ");
  EXPECT_EQ(conversation->ask({}), TapVerdict::pass) << "disabled: nobody is asked";
  conversation->enable();
  during = [] {};
  calls.clear();
  verdict = ask();
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(verdict.get(), TapVerdict::swallow);
  EXPECT_EQ(calls, "key ");
}

TEST_F(TapConversationTest, KeysThatNeedNoVerdictAreKeptUnlessOneBeforeThemIsOnItsWay) {
  const auto isPlus = [](const KeyDownEvent& event) { return event.characters == u"+"; };
  const auto taken = [this] {
    std::u16string characters;
    for (const auto& key : conversation->takePassedKeys()) {
      EXPECT_EQ(key.origin, KeyDownEvent::Origin::passed);
      characters += key.characters;
    }
    return characters;
  };
  conversation->passUnasked(isPlus);
  EXPECT_EQ(conversation->ask({.characters = u"+"}), TapVerdict::pass);
  conversation->tell({.characters = u"+"});
  EXPECT_EQ(taken(), u"++");
  EXPECT_EQ(taken(), u"");
  for (const bool isNotice : {false, true}) {
    if (isNotice) {
      conversation->tellOfUnseenKeys();
    } else {
      conversation->tell({.characters = u"a"});
    }
    conversation->tell({.characters = u"+"});  // must not overtake
    EXPECT_EQ(taken(), u"");
    queue.pump();
  }
  EXPECT_EQ(calls, "key key timeout key ");
  int kept = 0;
  for (; kept < 10'000 && queue.isEmpty(); ++kept) conversation->tell({.characters = u"+"});
  EXPECT_LT(kept, 1000) << "for ever more keys without a word to the main thread";
  conversation->passUnasked(nullptr);
  queue.pump();
  calls.clear();
  conversation->tell({.characters = u"+"});
  queue.pump();
  EXPECT_EQ(calls, "key ");
}

TEST_F(TapConversationTest, AClosedOneCallsNobodyAndKeepsNobodyWaiting) {
  during = [this] { conversation->close(); };
  auto verdict = ask();
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(verdict.get(), TapVerdict::pass);
  conversation->report({});
  conversation->tell({});
  queue.pump();
  EXPECT_EQ(calls, "key ");
}

}  // namespace
}  // namespace quorlo
