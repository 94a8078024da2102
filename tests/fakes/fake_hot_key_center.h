#pragma once

#include "platform/hot_key_center.h"

#include <map>
#include <memory>
#include <utility>

namespace quorlo {

class FakeHotKeyCenter : public HotKeyCenter {
 public:
  Result<Subscription> registerHotKey(KeyCode code, ModifierFlags flags,
                                      std::function<void()> pressed) override {
    const Combination combination{code, flags};
    if (!registered_->emplace(combination, std::move(pressed)).second) {
      return Error{"The combination is taken"};
    }
    return Subscription([weak = std::weak_ptr(registered_), combination] {
      if (const auto registered = weak.lock()) registered->erase(combination);
    });
  }

  // False when nothing is registered for the combination.
  bool press(KeyCode code, ModifierFlags flags) const {
    const auto found = registered_->find({code, flags});
    if (found == registered_->end()) return false;
    const auto pressed = found->second;
    pressed();
    return true;
  }

 private:
  using Combination = std::pair<KeyCode, ModifierFlags>;
  std::shared_ptr<std::map<Combination, std::function<void()>>> registered_ =
      std::make_shared<std::map<Combination, std::function<void()>>>();
};

}  // namespace quorlo
