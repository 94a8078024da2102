#pragma once

#include <functional>

namespace quorlo {

// Runs tasks off the main thread, in no particular order. Any thread.
class BackgroundQueue {
 public:
  virtual ~BackgroundQueue() = default;
  virtual void run(std::function<void()> task) = 0;
};

}  // namespace quorlo
