#pragma once

#include "platform/main_queue.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

namespace quorlo {

// A main queue whose clock the test moves. Tasks run only inside advance() and settle().
class FakeMainQueue : public MainQueue {
 public:
  void run(Task task) override { add(now_, std::move(task)); }

  void runAfter(Seconds delay, Task task) override {
    const auto ticks = std::chrono::duration_cast<Instant::duration>(std::max(delay, Seconds(0)));
    add(now_ + ticks, std::move(task));
  }

  Instant now() const override { return now_; }

  // Moves the clock on and runs what falls due, each task at its own time.
  void advance(Seconds by) {
    const auto end = now_ + std::chrono::duration_cast<Instant::duration>(by);
    while (!tasks_.empty() && tasks_.begin()->first.first <= end) runFirst();
    now_ = end;
  }

  // Runs what is due now, without moving the clock.
  void runDue() { advance(Seconds(0)); }

  // Lets time pass until nothing is queued any more.
  void settle() {
    while (!tasks_.empty()) runFirst();
  }

  bool idle() const { return tasks_.empty(); }

 private:
  void add(Instant due, Task task) { tasks_.emplace(std::pair(due, ++last_), std::move(task)); }

  void runFirst() {
    const auto node = tasks_.extract(tasks_.begin());
    now_ = std::max(now_, node.key().first);
    node.mapped()();
  }

  Instant now_{};
  std::uint64_t last_ = 0;
  std::map<std::pair<Instant, std::uint64_t>, Task> tasks_;
};

}  // namespace quorlo
