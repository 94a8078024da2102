#include "engine/paste/own_windows.h"

#include "platform/main_queue.h"
#include "platform/own_application.h"

#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kUnhideDelay{0.3};

}  // namespace

void OwnWindows::hide() {
  if (unhideIsPending_) {
    // They were hidden for the insertion before this one.
    unhideIsPending_ = false;
    ++unhideGeneration_;
    hadRegularActivationPolicy = true;
  }
  if (!application_.hasVisibleWindows()) return;
  hadRegularActivationPolicy = true;
  application_.hide();
  application_.setActivationPolicy(ActivationPolicy::accessory);
}

void OwnWindows::showLater() {
  if (!std::exchange(hadRegularActivationPolicy, false)) return;
  unhideIsPending_ = true;
  queue_.runAfter(kUnhideDelay, life_.guard([this, generation = ++unhideGeneration_] {
    if (generation != unhideGeneration_) return;
    unhideIsPending_ = false;
    application_.unhide();
    application_.setActivationPolicy(ActivationPolicy::regular);
  }));
}

}  // namespace quorlo
