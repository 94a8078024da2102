#include "store/history/operation_queue.h"

#include <utility>

namespace quorlo {

OperationQueue::OperationQueue() : thread_([this] { work(); }) {}

OperationQueue::~OperationQueue() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void OperationQueue::addOperation(Operation operation) {
  {
    const std::lock_guard lock(mutex_);
    operations_.push_back(std::move(operation));
  }
  changed_.notify_one();
}

void OperationQueue::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ends_ || !operations_.empty(); });
    if (ends_) return;
    auto operation = std::move(operations_.front());
    operations_.pop_front();
    lock.unlock();
    operation();
    operation = nullptr;  // what it holds goes before the next begins
    lock.lock();
  }
}

}  // namespace quorlo
