#include "base/life_token.h"
#include "base/log.h"
#include "base/observers.h"
#include "base/shared_observers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace quorlo {
namespace {

TEST(Log, ATextOfTheUserIsShownInDebugModeOnly) {
  EXPECT_EQ(userText("Grüße"), "(5 characters)");
  EXPECT_EQ(userText("x"), "(1 character)");
  setDebugLogging(true);
  EXPECT_EQ(userText("Grüße"), "Grüße");
  setDebugLogging(false);
}

TEST(SharedObserversTest, ASubscriptionMayEndInsideItsOwnCallbackAndWaitsForOneOnAnotherThread) {
  SharedObservers observers;
  int calls = 0;
  Subscription own;
  own = observers.add([&] {
    ++calls;
    own.reset();
  });
  observers.notify();
  observers.notify();
  EXPECT_EQ(calls, 1);

  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<bool> isUnderWay = false;
  auto other = observers.add([&] {
    isUnderWay = true;
    entered.set_value();
    leave.get_future().wait();
    isUnderWay = false;
  });
  std::thread notifier([&] { observers.notify(); });
  entered.get_future().wait();
  auto ended = std::async(std::launch::async, [&] {
    other.reset();
    return isUnderWay.load();
  });
  leave.set_value();
  EXPECT_FALSE(ended.get());
  notifier.join();
}

TEST(Subscription, EndsOnceWhicheverWayItGoes) {
  int ends = 0;
  {
    Subscription first([&] { ++ends; });
    Subscription second = std::move(first);
    second = Subscription([&] { ends += 10; });
    EXPECT_EQ(ends, 1);
    second.reset();
    second.reset();
    EXPECT_EQ(ends, 11);
    second = Subscription([&] { ends += 100; });
  }
  EXPECT_EQ(ends, 111);
}

TEST(Observers, HearInOrderAndMayComeAndGoDuringANotification) {
  Observers<int> observers;
  std::vector<std::string> heard;
  std::optional<Subscription> second;
  Subscription late;
  const auto first = observers.add([&](int value) {
    heard.push_back("first " + std::to_string(value));
    if (value == 1) {
      second.reset();
      late = observers.add([&](int later) { heard.push_back("late " + std::to_string(later)); });
    }
  });
  second = observers.add([&](int) { heard.push_back("second"); });
  Subscription own;
  own = observers.add([&](int value) {
    heard.push_back("own " + std::to_string(value));
    own.reset();
  });

  observers.notify(0);
  observers.notify(1);
  observers.notify(2);
  EXPECT_EQ(heard, (std::vector<std::string>{"first 0", "second", "own 0", "first 1", "first 2", "late 2"}));
}

TEST(Observers, MayBeDestroyedByTheirOwnCallback) {
  auto observers = std::make_unique<Observers<>>();
  int calls = 0;
  const auto first = observers->add([&] {
    ++calls;
    observers.reset();
  });
  const auto second = observers->add([&] { ++calls; });
  observers->notify();
  EXPECT_EQ(calls, 2);
}

TEST(LifeToken, GuardsTasksThatOutliveTheirObject) {
  int sum = 0;
  auto token = std::make_unique<LifeToken>();
  auto task = token->guard([&](int value) { sum += value; });
  task(1);
  token.reset();
  task(10);
  EXPECT_EQ(sum, 1);
}

TEST(Log, GoesToTheSinkSetLastAndBackToTheOneBefore) {
  std::vector<std::string> outer;
  std::vector<std::string> inner;
  const auto sinkInto = [](std::vector<std::string>& lines) {
    return [&lines](LogLevel, std::string_view line) { lines.emplace_back(line); };
  };
  const auto outerSubscription = redirectLog(sinkInto(outer));
  {
    const auto innerSubscription = redirectLog(sinkInto(inner));
    logDebug("unheard");
    setDebugLogging(true);
    logDebug("heard");
    setDebugLogging(false);
  }
  logWarning("WARNING: #2");
  EXPECT_EQ(inner, std::vector<std::string>{"heard"});
  EXPECT_EQ(outer, std::vector<std::string>{"WARNING: #2"});
}

}  // namespace
}  // namespace quorlo
