#pragma once

#include <functional>
#include <utility>

namespace quorlo {

// Keeps an observation, a registration or a hold alive; ends it on destruction. Movable, not copyable.
// Must be destroyed on the thread that the operation which returned it documents (the main thread
// where nothing is said).
class [[nodiscard]] Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
  Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      reset();
      end_ = std::exchange(other.end_, nullptr);
    }
    return *this;
  }
  ~Subscription() { reset(); }

  void reset() {
    if (auto end = std::exchange(end_, nullptr)) end();
  }
  explicit operator bool() const { return static_cast<bool>(end_); }

 private:
  std::function<void()> end_;
};

}  // namespace quorlo
