#include "ui/desktop/qt_main_queue.h"

#include "base/log.h"

#include <QSocketNotifier>

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace quorlo {
namespace {

constexpr Seconds kLongestDelay = std::chrono::hours(24 * 365);

int openTimer() {
  const int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
  if (timer >= 0) return timer;
  logError("ERROR: #qMq1tFd - There is no timer for the main thread's tasks.");
  std::abort();
}

}  // namespace

QtMainQueue::QtMainQueue()
    : timer_(openTimer()), wakeUps_(std::make_unique<QSocketNotifier>(timer_, QSocketNotifier::Read)) {
  QObject::connect(wakeUps_.get(), &QSocketNotifier::activated, [this] { runDue(); });
}

QtMainQueue::~QtMainQueue() {
  wakeUps_.reset();
  // What the tasks hold may queue more as it goes.
  decltype(tasks_) dropped;
  do {
    dropped.clear();
    const std::lock_guard lock(mutex_);
    dropped.swap(tasks_);
  } while (!dropped.empty());
  close(timer_);
}

void QtMainQueue::run(Task task) {
  add(now(), std::move(task));
}

void QtMainQueue::runAfter(Seconds delay, Task task) {
  const auto wait = delay > Seconds(0) ? std::min(delay, kLongestDelay) : Seconds(0);
  add(now() + std::chrono::ceil<Instant::duration>(wait), std::move(task));
}

void QtMainQueue::add(Instant due, Task task) {
  const std::lock_guard lock(mutex_);
  tasks_.emplace(std::pair(due, ++lastTask_), std::move(task));
  setTimer();
}

void QtMainQueue::runDue() {
  const auto present = now();
  std::unique_lock lock(mutex_);
  const auto last = lastTask_;
  while (!tasks_.empty()) {
    const auto& [due, number] = tasks_.begin()->first;
    if (due > present || number > last) break;
    auto task = std::move(tasks_.extract(tasks_.begin()).mapped());
    setTimer();  // for a loop inside the task
    lock.unlock();
    task();
    task = nullptr;  // what it holds may queue tasks as it goes
    lock.lock();
  }
  setTimer();
}

// With the lock. Setting it anew takes an earlier expiry back.
void QtMainQueue::setTimer() {
  itimerspec timer{};
  if (!tasks_.empty()) {
    const auto due = tasks_.begin()->first.first.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(due);
    timer.it_value.tv_sec = seconds.count();
    timer.it_value.tv_nsec = std::chrono::nanoseconds(due - seconds).count();
  }
  timerfd_settime(timer_, TFD_TIMER_ABSTIME, &timer, nullptr);
}

}  // namespace quorlo
