#include "x11/keyboard/tap_conversation.h"

namespace quorlo {

TapVerdict TapConversation::ask(const KeyDownEvent& event) {
  if (!enabled_) return TapVerdict::pass;
  const auto question = ++asked_;
  const auto settled = [&] { return closed_ || answered_ == question; };
  const auto begin = std::chrono::steady_clock::now();
  // Without the lock, for which the main thread would wait at once.
  queue_.run([self = shared_from_this(), question, event] { self->answer(question, event); });
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
  if (!enabled_) return;
  queue_.run([self = shared_from_this(), event] { self->report(event); });
}

void TapConversation::tellOfUnseenKeys() {
  queue_.run([self = shared_from_this()] {
    if (!self->isClosed()) self->callback_(TapEventType::keysPassedUnseen, nullptr, self->userInfo_);
  });
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
