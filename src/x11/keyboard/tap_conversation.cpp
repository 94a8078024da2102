#include "x11/keyboard/tap_conversation.h"

#include <thread>
#include <utility>

namespace quorlo {

TapVerdict TapConversation::ask(const KeyDownEvent& event) {
  if (!enabled_ || keep(event)) return TapVerdict::pass;
  const auto question = ++asked_;
  const auto settled = [&] { return closed_ || answered_ == question; };
  const auto begin = std::chrono::steady_clock::now();
  // Without the lock, for which the main thread would wait at once.
  queue_.run([self = shared_from_this(), question, event] { self->answer(question, event); });
  // Mostly the answer is there sooner than this thread could fall asleep and wake up again.
  while (answered_ != question && std::chrono::steady_clock::now() < begin + kAwake)
    std::this_thread::yield();
  std::unique_lock lock(mutex_);
  changed_.wait_until(lock, begin + kDeadline, settled);
  if (!settled() && answering_) changed_.wait_until(lock, begin + kDeadline + kGraceWhileAnswering, settled);
  if (settled()) return closed_ ? TapVerdict::pass : verdict_;
  abandoned_ = question;
  enabled_ = false;
  return TapVerdict::pass;
}

void TapConversation::answer(std::uint64_t question, const KeyDownEvent& event) {
  bool isAwaited = false;
  {
    const std::lock_guard lock(mutex_);
    if (closed_) return;
    isAwaited = answering_ = abandoned_ != question;
  }
  if (isAwaited) {
    const auto verdict = callback_(TapEventType::keyDown, &event, userInfo_);
    std::unique_lock lock(mutex_);
    answering_ = false;
    verdict_ = verdict;
    if (abandoned_ != question) answered_ = question;
    const bool isInTime = closed_ || answered_ == question;
    lock.unlock();
    changed_.notify_all();
    if (isInTime) return;
  }
  callback_(TapEventType::kCGEventTapDisabledByTimeout, nullptr, userInfo_);
}

void TapConversation::tell(const KeyDownEvent& event) {
  if (!enabled_ || keep(event)) return;
  runAhead([this, event] { report(event); });
}

void TapConversation::tellOfUnseenKeys() {
  runAhead([this] {
    if (!isClosed()) callback_(TapEventType::keysPassedUnseen, nullptr, userInfo_);
  });
}

bool TapConversation::keep(const KeyDownEvent& event) {
  const std::lock_guard lock(mutex_);
  const bool mustAsk = closed_ || noticesOnTheWay_ > 0 || passed_.size() >= kMostPassedKeys;
  if (mustAsk || !needsNoVerdict_ || !needsNoVerdict_(event)) return false;
  passed_.push_back(event);
  passed_.back().origin = KeyDownEvent::Origin::passed;
  return true;
}

void TapConversation::runAhead(MainQueue::Task task) {
  {
    const std::lock_guard lock(mutex_);
    ++noticesOnTheWay_;
  }
  queue_.run([self = shared_from_this(), task = std::move(task)] {
    task();
    const std::lock_guard lock(self->mutex_);
    --self->noticesOnTheWay_;
  });
}

void TapConversation::passUnasked(std::function<bool(const KeyDownEvent&)> needsNoVerdict) {
  const std::lock_guard lock(mutex_);
  needsNoVerdict_ = std::move(needsNoVerdict);
}

std::vector<KeyDownEvent> TapConversation::takePassedKeys() {
  const std::lock_guard lock(mutex_);
  return std::exchange(passed_, {});
}

void TapConversation::report(const KeyDownEvent& event) {
  if (!enabled_ || isClosed()) return;
  callback_(TapEventType::keyDown, &event, userInfo_);
}

bool TapConversation::isClosed() const {
  const std::lock_guard lock(mutex_);
  return closed_;
}

void TapConversation::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  enabled_ = false;
  changed_.notify_all();
}

}  // namespace quorlo
