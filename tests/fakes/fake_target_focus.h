#pragma once

#include "platform/main_queue.h"
#include "platform/target_focus.h"

#include <utility>

namespace quorlo {

// One window that the user types in, and one of the program.
class FakeTargetFocus : public TargetFocus {
 public:
  explicit FakeTargetFocus(MainQueue& queue) : queue_(queue) {}

  void remember() override {
    isRemembered_ = true;
    previousOwnWindow_ = activeOwnWindow;
  }
  void take(std::uintptr_t window) override { activeOwnWindow = window; }
  void giveBack(Completion completion) override { give(previousOwnWindow_, std::move(completion)); }
  void giveToTarget(Completion completion) override { give(0, std::move(completion)); }

  bool targetIsThere = true;
  Seconds delay{0.01};
  std::uintptr_t activeOwnWindow = 0;  // 0 while the user's window is active

 private:
  void give(std::uintptr_t ownWindow, Completion completion) {
    queue_.runAfter(delay, [this, ownWindow, completion = std::move(completion)] {
      const bool isActive = isRemembered_ && (ownWindow != 0 || targetIsThere);
      if (isActive) activeOwnWindow = ownWindow;
      completion(isActive);
    });
  }

  MainQueue& queue_;
  bool isRemembered_ = false;
  std::uintptr_t previousOwnWindow_ = 0;
};

}  // namespace quorlo
