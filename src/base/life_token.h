#pragma once

#include <memory>
#include <utility>

namespace quorlo {

// A member by which delayed tasks learn that their object is gone: a guarded task does nothing once the
// token is destroyed. Token and tasks belong to one thread.
class LifeToken {
 public:
  LifeToken() = default;
  LifeToken(const LifeToken&) = delete;
  LifeToken& operator=(const LifeToken&) = delete;

  template <class Task>
  auto guard(Task task) const {
    return [alive = std::weak_ptr<char>(alive_), task = std::move(task)](auto&&... args) mutable {
      if (!alive.expired()) task(std::forward<decltype(args)>(args)...);
    };
  }

 private:
  std::shared_ptr<char> alive_ = std::make_shared<char>();
};

}  // namespace quorlo
