#include "x11/keyboard/x11_typed_keys_hold.h"

#include "x11/keyboard/keyboard_service.h"

namespace quorlo {

struct X11TypedKeysHold::State {
  KeyboardService& keyboard;
  PasteTracker& pastes;
  int holders = 0;
  bool holding = false;

  void endIfDone() {
    if (!holding || holders > 0 || pastes.hasUnreadPaste()) return;
    end();
  }
  void end() {
    holding = false;
    keyboard.endHold();
  }
};

X11TypedKeysHold::X11TypedKeysHold(KeyboardService& keyboard, MainQueue& queue, PasteTracker& pastes)
    : state_(new State{keyboard, pastes}) {
  pastesObservation_ = pastes.observe([&queue, weak = std::weak_ptr<State>(state_)] {
    queue.run([weak] {
      const auto state = weak.lock();
      if (!state || !state->holding) return;
      state->keyboard.noteProgress();
      state->endIfDone();
    });
  });
}

X11TypedKeysHold::~X11TypedKeysHold() {
  if (state_->holding) state_->end();
}

Subscription X11TypedKeysHold::begin() {
  ++state_->holders;
  state_->holding = true;
  state_->keyboard.beginHold();
  return Subscription([weak = std::weak_ptr<State>(state_)] {
    const auto state = weak.lock();
    if (!state) return;
    --state->holders;
    state->endIfDone();
  });
}

void X11TypedKeysHold::ownWindowBecameActive() {
  if (state_->holding) state_->end();
}

}  // namespace quorlo
