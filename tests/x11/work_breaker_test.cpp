#include "x11/keyboard/work_breaker.h"

#include "x11/keyboard/retry_pauses.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace quorlo {
namespace {

using namespace std::chrono_literals;

class WorkBreakerTest : public ::testing::Test {
 protected:
  // Works and pauses in turn for `length`. False when that was too much.
  bool works(
      WorkBreaker::Clock::duration piece, WorkBreaker::Clock::duration pause,
      WorkBreaker::Clock::duration length, const std::function<void()>& between = [] {}) {
    for (const auto end = now + length; now < end; now += pause) {
      const auto begin = now;
      now += piece;
      if (!breaker.allows(begin, now)) return false;
      between();
    }
    return true;
  }

  WorkBreaker breaker;
  WorkBreaker::Instant now{1h};
};

TEST_F(WorkBreakerTest, WorkWithoutEndIsCutOffInTwoSecondsAndMayBeginAnew) {
  const auto begin = now;
  EXPECT_FALSE(works(2ms, 0ms, 10s));
  EXPECT_LE(now - begin, 2100ms);
  EXPECT_FALSE(works(2ms, 1ms, 10s)) << "the second time as the first";
  EXPECT_FALSE(works(30ms, 10ms, 20s));
}

TEST_F(WorkBreakerTest, WhatOthersDoAtTheirPaceIsNotCutOff) {
  EXPECT_TRUE(works(2ms, 12ms, 1h)) << "a program types characters that the layout lacks";
  EXPECT_TRUE(works(40ms, 0ms, 800ms)) << "layouts are set one after the other";
  now += 1min;
  EXPECT_TRUE(works(30s, 1s, 2min)) << "the server is held by another program";
}

TEST_F(WorkBreakerTest, TypedKeysPayForTheWorkTheyCause) {
  EXPECT_TRUE(works(40ms, 0ms, 1min, [&] { breaker.keyTyped(); })) << "two keyboards in turn";
}

TEST(RetryPausesTest, PausesGrowWhileItFailsAndBeginAnewAfterACalm) {
  RetryPauses pauses;
  RetryPauses::Instant now{1h};
  std::vector<std::chrono::seconds> waited;
  for (int i = 0; i < 9; ++i) {
    waited.push_back(pauses.next(now));
    now += waited.back() + 2s;
  }
  EXPECT_EQ(waited, (std::vector{0s, 1s, 2s, 4s, 8s, 16s, 32s, 60s, 60s}));
  now += 60s;
  EXPECT_EQ(pauses.next(now), 0s);
}

}  // namespace
}  // namespace quorlo
