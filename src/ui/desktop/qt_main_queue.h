#pragma once

#include "platform/main_queue.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

class QSocketNotifier;

namespace quorlo {

// The main queue on Qt's event loop; tasks run in nested loops (modal alerts) too. Made and destroyed on
// the main thread, within the life of the QCoreApplication.
class QtMainQueue final : public MainQueue {
 public:
  QtMainQueue();
  ~QtMainQueue() override;

  void run(Task task) override;
  void runAfter(Seconds delay, Task task) override;
  Instant now() const override { return std::chrono::steady_clock::now(); }

 private:
  void add(Instant due, Task task);
  // Runs what is due and was queued before the call; what those tasks queue waits for the next turn of
  // the event loop, so that endless work leaves Qt its share.
  void runDue();
  void setTimer();

  std::mutex mutex_;  // guards the tasks, lastTask_ and the setting of the timer
  std::map<std::pair<Instant, std::uint64_t>, Task> tasks_;
  std::uint64_t lastTask_ = 0;
  int timer_;  // of the kernel: exact, and set from any thread; Qt's count whole milliseconds
  std::unique_ptr<QSocketNotifier> wakeUps_;
};

}  // namespace quorlo
