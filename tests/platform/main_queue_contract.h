#pragma once

#include "platform/main_queue.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

namespace quorlo {

// What every main queue does. `pass` lets the given time pass on it.
inline void expectTasksInTheOrderInWhichTheyFallDue(MainQueue& queue,
                                                    const std::function<void(Seconds)>& pass) {
  std::vector<std::string> ran;
  const auto note = [&](const std::string& task) { return [&ran, task] { ran.push_back(task); }; };
  queue.runAfter(Seconds(0.03), note("late"));
  queue.runAfter(Seconds(0.01), note("soon"));
  queue.run([&] {
    queue.run(note("queued by the first"));
    ran.emplace_back("first");
  });
  queue.runAfter(Seconds(-5), note("second"));
  queue.run(note("third"));
  EXPECT_THAT(ran, testing::IsEmpty());
  const auto start = queue.now();
  pass(Seconds(0.02));
  EXPECT_GE(Seconds(queue.now() - start), Seconds(0.02));
  EXPECT_THAT(ran, testing::ElementsAre("first", "second", "third", "queued by the first", "soon"));
  pass(Seconds(0.02));
  EXPECT_EQ(ran.back(), "late");
}

}  // namespace quorlo
