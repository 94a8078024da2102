#pragma once

#include "platform/hot_key_center.h"

#include <map>
#include <memory>
#include <set>
#include <utility>

namespace quorlo {

// The test presses the combinations. Those in `takenByOthers` belong to another program.
class FakeHotKeyCenter : public HotKeyCenter {
 public:
  Result<Subscription> registerHotKey(Shortcut shortcut, std::function<void()> pressed) override {
    shortcut = normalized(shortcut);
    if (takenByOthers.contains(shortcut) ||
        !state_->registered.emplace(shortcut, std::move(pressed)).second) {
      return Error{"The combination is taken"};
    }
    return Subscription([weak = std::weak_ptr(state_), shortcut] {
      if (const auto state = weak.lock()) state->registered.erase(shortcut);
    });
  }
  Subscription suspend() override {
    ++state_->suspensions;
    return Subscription([weak = std::weak_ptr(state_)] {
      if (const auto state = weak.lock()) --state->suspensions;
    });
  }

  // False when nothing is called back.
  bool press(Shortcut shortcut) const {
    const auto found = state_->registered.find(normalized(shortcut));
    if (found == state_->registered.end() || state_->suspensions > 0) return false;
    const auto pressed = found->second;
    pressed();
    return true;
  }

  std::set<Shortcut> takenByOthers;

 private:
  struct State {
    std::map<Shortcut, std::function<void()>> registered;
    int suspensions = 0;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace quorlo
