#pragma once

#include <algorithm>
#include <chrono>

namespace quorlo {

// How long to wait before something that has failed is tried again: not at all at first, then longer and
// longer. What went well for a while begins anew.
class RetryPauses {
 public:
  using Instant = std::chrono::steady_clock::time_point;

  static constexpr std::chrono::seconds kFirst{1};
  static constexpr std::chrono::seconds kLongest{60};
  static constexpr std::chrono::seconds kCalm{60};

  std::chrono::seconds next(Instant now) {
    if (now >= calmAt_) pause_ = std::chrono::seconds::zero();
    const auto result = pause_;
    pause_ = std::clamp(2 * pause_, kFirst, kLongest);
    calmAt_ = now + result + kCalm;
    return result;
  }

 private:
  std::chrono::seconds pause_{0};
  Instant calmAt_{};
};

}  // namespace quorlo
