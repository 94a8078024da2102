#pragma once

#include "platform/main_queue.h"
#include "virtual_desktop/wait.h"

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace quorlo {

// A main thread that runs only while a test lets it.
class PumpedQueue : public MainQueue {
 public:
  void run(Task task) override { add(now(), std::move(task)); }
  void runAfter(Seconds delay, Task task) override {
    add(now() + std::chrono::duration_cast<Instant::duration>(delay), std::move(task));
  }
  Instant now() const override { return std::chrono::steady_clock::now(); }

  // Runs what is due.
  void pump() {
    for (;;) {
      Task task;
      {
        const std::lock_guard lock(mutex_);
        if (tasks_.empty() || tasks_.begin()->first > now()) return;
        task = std::move(tasks_.begin()->second);
        tasks_.erase(tasks_.begin());
      }
      task();
    }
  }

  bool isEmpty() {
    const std::lock_guard lock(mutex_);
    return tasks_.empty();
  }

  // Runs tasks until the condition holds; false when it does not hold before the deadline.
  template <class Condition>
  bool pumpUntil(Condition condition, std::chrono::milliseconds patience = kPatience) {
    return waitUntil(
        [&] {
          pump();
          return condition();
        },
        patience);
  }

 private:
  void add(Instant due, Task task) {
    const std::lock_guard lock(mutex_);
    tasks_.emplace(due, std::move(task));
  }

  std::mutex mutex_;
  std::multimap<Instant, Task> tasks_;
};

}  // namespace quorlo
