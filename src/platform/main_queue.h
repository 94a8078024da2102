#pragma once

#include <chrono>
#include <functional>

namespace quorlo {

using Seconds = std::chrono::duration<double>;

// Runs tasks on the main thread, one at a time and never inside the call that queues them. Tasks due at
// the same time run in the order in which they were queued. Tasks still queued at the end of the program
// are dropped.
class MainQueue {
 public:
  using Task = std::function<void()>;
  using Instant = std::chrono::steady_clock::time_point;

  virtual ~MainQueue() = default;

  // From any thread.
  virtual void run(Task task) = 0;

  // From the main thread. A delay of 0 or less runs the task at the next turn.
  virtual void runAfter(Seconds delay, Task task) = 0;

  // Time that passes, for measuring intervals; not the wall clock.
  virtual Instant now() const = 0;
};

}  // namespace quorlo
