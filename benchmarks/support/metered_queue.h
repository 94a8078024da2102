#pragma once

#include "x11/pumped_queue.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quorlo {

// A main queue that knows how long its longest task took.
class MeteredQueue : public PumpedQueue {
 public:
  void run(Task task) override { PumpedQueue::run(metered(std::move(task))); }
  void runAfter(Seconds delay, Task task) override { PumpedQueue::runAfter(delay, metered(std::move(task))); }

  double longestTurn() const { return longest_; }  // in seconds
  void forget() { longest_ = 0; }

 private:
  Task metered(Task task) {
    return [this, task = std::move(task)] {
      const auto begin = std::chrono::steady_clock::now();
      task();
      const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
      longest_ = std::max(longest_, taken.count());
    };
  }

  double longest_ = 0;
};

}  // namespace quorlo
