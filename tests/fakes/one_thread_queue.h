#pragma once

#include "platform/background_queue.h"

#include <functional>
#include <thread>
#include <utility>

namespace quorlo {

// Runs one task after the other on a thread; who has another one waits for the one before.
class OneThreadQueue : public BackgroundQueue {
 public:
  ~OneThreadQueue() override { wait(); }
  void run(std::function<void()> task) override {
    wait();
    thread_ = std::thread(std::move(task));
  }

 private:
  void wait() {
    if (thread_.joinable()) thread_.join();
  }
  std::thread thread_;
};

}  // namespace quorlo
