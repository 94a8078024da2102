#pragma once

#include <algorithm>
#include <chrono>

namespace quorlo {

// Notices work that feeds itself: a thread that does much of it again and again although no key is typed is
// taken to answer its own doing. Work pays from an allowance, which time and typed keys fill up again.
class WorkBreaker {
 public:
  using Clock = std::chrono::steady_clock;
  using Instant = Clock::time_point;

  static constexpr Clock::duration kAllowance = std::chrono::seconds(1);
  // One piece of work is no repetition, however long the server lets it wait.
  static constexpr Clock::duration kLongestPiece = std::chrono::milliseconds(50);
  static constexpr Clock::duration kAllowedForKey = std::chrono::milliseconds(100);
  static constexpr int kTimeForWork = 2;  // a second pays for half a second of work

  // A piece of work was done. False when there was too much; the allowance is full again then.
  [[nodiscard]] bool allows(Instant begin, Instant end) {
    refill((begin - last_) / kTimeForWork);
    last_ = end;
    left_ -= std::min(end - begin, kLongestPiece);
    if (left_ > Clock::duration::zero()) return true;
    left_ = kAllowance;
    return false;
  }
  void keyTyped() { refill(kAllowedForKey); }

 private:
  void refill(Clock::duration amount) { left_ = std::min(left_ + amount, kAllowance); }

  Clock::duration left_ = kAllowance;
  Instant last_{};
};

}  // namespace quorlo
