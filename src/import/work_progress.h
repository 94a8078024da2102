#pragma once

#include <atomic>

namespace quorlo {

// How far a long piece of work has come, shared by the thread that does it and the one that shows it. Any
// thread.
class WorkProgress {
 public:
  WorkProgress() = default;
  // A part of `whole`, which must outlive it: its fractions lie between `begin` and `end` of the whole's, and
  // it is cancelled with the whole.
  WorkProgress(WorkProgress& whole, double begin, double end) : whole_(&whole), begin_(begin), end_(end) {}
  WorkProgress(const WorkProgress&) = delete;
  WorkProgress& operator=(const WorkProgress&) = delete;

  // From 0 to 1.
  double fraction() const { return fraction_.load(std::memory_order_relaxed); }
  void setFraction(double fraction) {
    fraction_.store(fraction, std::memory_order_relaxed);
    if (whole_ != nullptr) whole_->setFraction(begin_ + fraction * (end_ - begin_));
  }

  // The work ends soon after and has no effect.
  void cancel() { isCancelled_.store(true, std::memory_order_relaxed); }
  bool isCancelled() const {
    return isCancelled_.load(std::memory_order_relaxed) || (whole_ != nullptr && whole_->isCancelled());
  }

 private:
  std::atomic<double> fraction_ = 0;
  std::atomic<bool> isCancelled_ = false;
  WorkProgress* whole_ = nullptr;
  double begin_ = 0;
  double end_ = 1;
};

}  // namespace quorlo
