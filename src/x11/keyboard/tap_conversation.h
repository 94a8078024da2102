#pragma once

#include "platform/event_tap.h"
#include "platform/main_queue.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace quorlo {

// The question "pass or swallow?" between the thread that has the keys and the main thread that knows.
// The one who asks never waits longer than the deadlines: then the key passes and the tap is disabled,
// which the main thread is told once it answers again.
class TapConversation : public std::enable_shared_from_this<TapConversation> {
 public:
  // For the main thread to begin with the answer, and then to finish it.
  static constexpr std::chrono::milliseconds kDeadline{200};
  static constexpr std::chrono::milliseconds kGraceWhileAnswering{150};

  TapConversation(MainQueue& queue, EventTap::Callback callback, void* userInfo)
      : queue_(queue), callback_(callback), userInfo_(userInfo) {}

  // Any other thread, one at a time.
  TapVerdict ask(const KeyDownEvent& event);
  // A key whose way cannot be changed.
  void tell(const KeyDownEvent& event);
  // Keys may have passed without a question. Any thread.
  void tellOfUnseenKeys();

  // Main thread from here on. A key that this program posts.
  void report(const KeyDownEvent& event);
  void enable() { enabled_ = true; }
  bool isEnabled() const { return enabled_; }
  void passUnasked(std::function<bool(const KeyDownEvent&)> needsNoVerdict);
  std::vector<KeyDownEvent> takePassedKeys();
  // Nothing is called from now on; who waits for an answer gets "pass".
  void close();

 private:
  static constexpr std::size_t kMostPassedKeys = 64;
  static constexpr std::chrono::microseconds kAwake{100};

  // Whether the key needs no question; it is kept then.
  bool keep(const KeyDownEvent& event);
  // For what is to be handled before all keys that follow.
  void runAhead(MainQueue::Task task);
  void answer(std::uint64_t question, const KeyDownEvent& event);
  bool isClosed() const;

  MainQueue& queue_;
  const EventTap::Callback callback_;
  void* const userInfo_;
  std::atomic<bool> enabled_ = true;

  std::uint64_t asked_ = 0;  // of the thread that asks

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::atomic<std::uint64_t> answered_ = 0;
  std::uint64_t abandoned_ = 0;
  bool answering_ = false;
  bool closed_ = false;
  std::function<bool(const KeyDownEvent&)> needsNoVerdict_;
  std::vector<KeyDownEvent> passed_;
  int noticesOnTheWay_ = 0;
  TapVerdict verdict_ = TapVerdict::pass;
};

}  // namespace quorlo
