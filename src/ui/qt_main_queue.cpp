#include "ui/qt_main_queue.h"

#include <QCoreApplication>
#include <QObject>
#include <QThread>
#include <QTimer>

#include <algorithm>

namespace quorlo {
namespace {

constexpr Seconds kLongestDelay = std::chrono::hours(24 * 365);
constexpr std::chrono::milliseconds kLongestTimer = std::chrono::hours(24);  // it is then set again

}  // namespace

QtMainQueue::QtMainQueue() : timer_(std::make_unique<QTimer>()), wakeUps_(std::make_unique<QObject>()) {
  timer_->setSingleShot(true);
  timer_->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer_.get(), &QTimer::timeout, wakeUps_.get(), [this] { runDue(); });
}

QtMainQueue::~QtMainQueue() {
  // What the tasks hold may queue more as it goes.
  for (decltype(tasks_) dropped;; dropped.clear()) {
    const std::lock_guard lock(mutex_);
    dropped.swap(tasks_);
    if (dropped.empty()) return;
  }
}

void QtMainQueue::run(Task task) {
  add(now(), std::move(task));
  if (QThread::currentThread() == wakeUps_->thread()) {
    setTimer();
  } else {
    QMetaObject::invokeMethod(
        wakeUps_.get(), [this] { runDue(); }, Qt::QueuedConnection);
  }
}

void QtMainQueue::runAfter(Seconds delay, Task task) {
  const auto wait = delay > Seconds(0) ? std::min(delay, kLongestDelay) : Seconds(0);
  add(now() + std::chrono::ceil<Instant::duration>(wait), std::move(task));
  setTimer();
}

void QtMainQueue::add(Instant due, Task task) {
  const std::lock_guard lock(mutex_);
  tasks_.emplace(std::pair(due, ++lastTask_), std::move(task));
}

void QtMainQueue::runDue() {
  const auto present = now();
  std::unique_lock lock(mutex_);
  const auto last = lastTask_;
  while (!tasks_.empty()) {
    const auto& [due, number] = tasks_.begin()->first;
    if (due > present || number > last) break;
    auto task = std::move(tasks_.extract(tasks_.begin()).mapped());
    lock.unlock();
    setTimer();  // for a loop inside the task
    task();
    task = nullptr;  // what it holds may queue tasks as it goes
    lock.lock();
  }
  lock.unlock();
  setTimer();
}

void QtMainQueue::setTimer() {
  const std::lock_guard lock(mutex_);
  if (tasks_.empty()) {
    timer_->stop();
    return;
  }
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(tasks_.begin()->first.first - now());
  timer_->start(std::clamp(wait, std::chrono::milliseconds(0), kLongestTimer));
}

}  // namespace quorlo
