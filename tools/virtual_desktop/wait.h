#pragma once

#include <chrono>
#include <thread>

namespace quorlo {

inline constexpr std::chrono::milliseconds kPatience{10000};

// Looks again and again until the condition holds; false when it does not hold before the deadline. Waiting
// for other programs on a real desktop has no better signal that all of them give.
template <class Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds patience = kPatience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) return condition();
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
  }
  return true;
}

}  // namespace quorlo
