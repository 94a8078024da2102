#pragma once

#include "base/subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace quorlo {

// A list of callbacks; one thread only. Callbacks run in the order of their registration. A callback
// may add or remove callbacks, itself included; one added during a notification first hears the next.
template <class... Args>
class Observers {
 public:
  Subscription add(std::function<void(Args...)> callback) {
    const auto id = ++state_->lastId;
    state_->callbacks.emplace(id, std::move(callback));
    return Subscription([weak = std::weak_ptr<State>(state_), id] {
      if (auto state = weak.lock()) state->callbacks.erase(id);
    });
  }

  void notify(Args... args) const {
    const auto state = state_;  // outlives a callback that destroys the owner
    const auto last = state->lastId;
    auto it = state->callbacks.begin();
    while (it != state->callbacks.end() && it->first <= last) {
      const auto id = it->first;
      const auto callback = it->second;
      callback(args...);
      it = state->callbacks.upper_bound(id);
    }
  }

 private:
  struct State {
    std::map<std::uint64_t, std::function<void(Args...)>> callbacks;
    std::uint64_t lastId = 0;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace quorlo
