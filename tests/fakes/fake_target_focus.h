#pragma once

#include "platform/main_queue.h"
#include "platform/target_focus.h"

#include <utility>

namespace quorlo {

// One window that the user types in, and one of the program.
class FakeTargetFocus : public TargetFocus {
 public:
  explicit FakeTargetFocus(MainQueue& queue) : queue_(queue) {}

  void remember() override { isRemembered_ = true; }
  void take(std::uintptr_t window) override { activeOwnWindow = window; }
  void giveBack(Completion completion) override {
    queue_.runAfter(delay, [this, completion = std::move(completion)] {
      const bool isActive = isRemembered_ && targetIsThere;
      if (isActive) activeOwnWindow = 0;
      completion(isActive);
    });
  }

  bool targetIsThere = true;
  Seconds delay{0.01};
  std::uintptr_t activeOwnWindow = 0;  // 0 while the user's window is active

 private:
  MainQueue& queue_;
  bool isRemembered_ = false;
};

}  // namespace quorlo
