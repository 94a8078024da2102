#include "ui/desktop/thread_background_queue.h"

#include <QThreadPool>

#include <utility>

namespace quorlo {
namespace {

constexpr int kThreads = 2;
constexpr int kIdleThreadLifeMs = 1000;

}  // namespace

ThreadBackgroundQueue::ThreadBackgroundQueue() : threads_(std::make_unique<QThreadPool>()) {
  threads_->setMaxThreadCount(kThreads);
  threads_->setExpiryTimeout(kIdleThreadLifeMs);
}

ThreadBackgroundQueue::~ThreadBackgroundQueue() {
  threads_->clear();
  threads_->waitForDone();
}

void ThreadBackgroundQueue::run(std::function<void()> task) {
  threads_->start(std::move(task));
}

}  // namespace quorlo
