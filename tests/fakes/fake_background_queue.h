#pragma once

#include "platform/background_queue.h"

#include <deque>
#include <utility>

namespace quorlo {

// Holds tasks until the test runs them.
class FakeBackgroundQueue : public BackgroundQueue {
 public:
  void run(std::function<void()> task) override { tasks_.push_back(std::move(task)); }

  void runAll() {
    while (!tasks_.empty()) {
      const auto task = std::move(tasks_.front());
      tasks_.pop_front();
      task();
    }
  }

  bool idle() const { return tasks_.empty(); }

 private:
  std::deque<std::function<void()>> tasks_;
};

}  // namespace quorlo
