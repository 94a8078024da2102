#pragma once

#include "platform/main_queue.h"
#include "platform/typed_keys_hold.h"
#include "x11/selection/paste_tracker.h"

#include <memory>

namespace quorlo {

class KeyboardService;

// Holds keys back in the tap. Without a tap there is nothing to hold: keys go where they always go.
class X11TypedKeysHold : public TypedKeysHold {
 public:
  X11TypedKeysHold(KeyboardService& keyboard, MainQueue& queue, PasteTracker& pastes);
  ~X11TypedKeysHold() override;

  std::unique_ptr<Hold> begin() override;

  // What is typed belongs to it at once.
  void ownWindowBecameActive();

 private:
  struct State;
  class HeldKeys;
  std::shared_ptr<State> state_;  // outlived by holds and by tasks of the main queue
  Subscription pastesObservation_;
};

}  // namespace quorlo
