#pragma once

#include <atomic>

namespace quorlo {

// How far a long piece of work has come, shared by the thread that does it and the one that shows it. Any
// thread.
class WorkProgress {
 public:
  // From 0 to 1.
  double fraction() const { return fraction_.load(std::memory_order_relaxed); }
  void setFraction(double fraction) { fraction_.store(fraction, std::memory_order_relaxed); }

  // The work ends soon after and has no effect.
  void cancel() { isCancelled_.store(true, std::memory_order_relaxed); }
  bool isCancelled() const { return isCancelled_.load(std::memory_order_relaxed); }

 private:
  std::atomic<double> fraction_ = 0;
  std::atomic<bool> isCancelled_ = false;
};

}  // namespace quorlo
