#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace quorlo {

// A thread of its own that runs operations one after the other, in the order in which they came.
// Destruction drops those not yet begun and waits for the one under way.
class OperationQueue {
 public:
  using Operation = std::function<void()>;

  OperationQueue();
  OperationQueue(const OperationQueue&) = delete;
  OperationQueue& operator=(const OperationQueue&) = delete;
  ~OperationQueue();

  // From any thread, an operation of the queue included.
  void addOperation(Operation operation);

 private:
  void work();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Operation> operations_;
  bool ends_ = false;
  std::thread thread_;
};

}  // namespace quorlo
