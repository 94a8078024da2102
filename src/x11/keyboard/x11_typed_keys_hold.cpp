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

class X11TypedKeysHold::HeldKeys : public Hold {
 public:
  explicit HeldKeys(const std::shared_ptr<State>& state) : state_(state), id_(state->keyboard.beginHold()) {
    ++state->holders;
    state->holding = true;
  }
  ~HeldKeys() override {
    const auto state = state_.lock();
    if (!state) return;
    --state->holders;
    state->endIfDone();
  }
  HeldKeys(const HeldKeys&) = delete;
  HeldKeys& operator=(const HeldKeys&) = delete;

  bool keepTrigger() override {
    const auto state = state_.lock();
    if (!state || !state->keyboard.keepTrigger(id_)) return false;
    state->keyboard.noteProgress();
    return true;
  }
  void expectPause(Seconds pause) override {
    if (const auto state = state_.lock()) state->keyboard.noteProgress(pause);
  }

 private:
  std::weak_ptr<State> state_;
  HoldId id_;
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

std::unique_ptr<TypedKeysHold::Hold> X11TypedKeysHold::begin() {
  return std::make_unique<HeldKeys>(state_);
}

void X11TypedKeysHold::ownWindowBecameActive() {
  if (state_->holding) state_->end();
}

}  // namespace quorlo
