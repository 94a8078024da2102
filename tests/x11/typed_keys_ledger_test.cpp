#include "x11/guard/typed_keys_ledger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quorlo {
namespace {

// Keys are named by letters, their presses by capital ones; all are on one device unless said otherwise.
class TypedKeysLedgerTest : public ::testing::Test {
 protected:
  static TypedKeysLedger::Key key(char name) {
    const bool isPress = name >= 'A' && name <= 'Z';
    return {isPress, 9, static_cast<std::uint8_t>(isPress ? name - 'A' + 'a' : name)};
  }
  // Returns the name of the last press.
  PressId type(std::string_view names, std::uint32_t time) {
    PressId last;
    for (const char name : names) {
      ledger.typed(key(name), time);
      if (key(name).isPress) last = numbering.next(9, time);
    }
    return last;
  }
  std::string undelivered() const {
    std::string names;
    for (const auto& each : ledger.undelivered()) {
      names += static_cast<char>(each.isPress ? each.keycode - 'a' + 'A' : each.keycode);
    }
    return names;
  }

  TypedKeysLedger ledger;
  PressNumbering numbering;
};

TEST_F(TypedKeysLedgerTest, WhatIsNotSettledIsUndeliveredThoughItWasTaken) {
  const auto first = type("AB", 100);
  const auto second = type("baC", 110);
  ledger.report(PressReport::settled, first);
  EXPECT_EQ(undelivered(), "C");
  EXPECT_THAT(ledger.downBefore(), ::testing::IsEmpty()) << "both were let go before the press that is left";
  ledger.report(PressReport::taken, second);
  EXPECT_FALSE(ledger.unanswered());
  type("c", 120);
  EXPECT_EQ(undelivered(), "Cc");
  ledger.report(PressReport::settled, second);
  EXPECT_EQ(undelivered(), "");
}

TEST_F(TypedKeysLedgerTest, PressesOfOneMillisecondAreToldApart) {
  const auto first = type("A", 100);
  type("aAaB", 100);
  ledger.report(PressReport::settled, first);
  EXPECT_EQ(undelivered(), "AaB");
}

TEST_F(TypedKeysLedgerTest, KeysOfAKeyboardThatIsNotGrabbedAreNotQuorlosToDeliver) {
  type("A", 100);
  ledger.passedByItself(key('A'));
  EXPECT_FALSE(ledger.unanswered());
  const auto held = type("B", 110);
  type("C", 120);
  ledger.passedByItself(key('C'));
  EXPECT_EQ(ledger.unanswered(), held);
  EXPECT_EQ(undelivered(), "B");
  EXPECT_EQ(ledger.downBefore(), (TypedKeysLedger::Keys{{9, 'a'}}));
  EXPECT_EQ(ledger.downNow(), (TypedKeysLedger::Keys{{9, 'a'}, {9, 'b'}, {9, 'c'}}));
}

TEST_F(TypedKeysLedgerTest, EachSignOfLifeGivesMoreTimeAcrossTheEndOfTheClock) {
  const auto first = type("A", 0xFFFFFFF0);
  type("B", 0xFFFFFFF8);
  EXPECT_EQ(ledger.waitingSince(), 0xFFFFFFF0);
  ledger.setTime(5);
  ledger.report(PressReport::settled, first);
  EXPECT_EQ(ledger.waitingSince(), 5U);
  type("C", 20);
  EXPECT_EQ(ledger.waitingSince(), 5U) << "the first of those that wait counts";
}

TEST_F(TypedKeysLedgerTest, AReportOfAPressThatTheServerDidNotTellOfSettlesWhatIsOlder) {
  type("A", 100);
  type("B", 120);
  ledger.report(PressReport::settled, {110, 9, 0});
  EXPECT_EQ(undelivered(), "B");
}

}  // namespace
}  // namespace quorlo
