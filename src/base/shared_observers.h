#pragma once

#include "base/subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace quorlo {

// A list of callbacks that threads share. A callback runs on the thread that notifies, without a lock on the
// list: it may add and end subscriptions, its own too. Ending a subscription waits for a call of it that is
// under way on another thread; none follows. Subscriptions may outlive the list.
class SharedObservers {
 public:
  Subscription add(std::function<void()> callback) {
    auto entry = std::make_shared<Entry>(std::move(callback));
    const std::lock_guard lock(state_->mutex);
    const auto id = ++state_->lastId;
    state_->entries.emplace(id, entry);
    return Subscription([state = state_, entry, id] {
      {
        const std::lock_guard end(state->mutex);
        state->entries.erase(id);
      }
      const std::lock_guard call(entry->call);
      entry->isEnded = true;
    });
  }

  void notify() const {
    std::vector<std::shared_ptr<Entry>> entries;
    {
      const std::lock_guard lock(state_->mutex);
      for (const auto& [id, entry] : state_->entries) entries.push_back(entry);
    }
    for (const auto& entry : entries) {
      const std::lock_guard call(entry->call);
      if (!entry->isEnded) entry->callback();
    }
  }

 private:
  struct Entry {
    explicit Entry(std::function<void()> toCall) : callback(std::move(toCall)) {}
    std::function<void()> callback;
    std::recursive_mutex call;  // held during a call; recursive, since the callback may end its subscription
    bool isEnded = false;
  };
  struct State {
    std::mutex mutex;
    std::map<std::uint64_t, std::shared_ptr<Entry>> entries;
    std::uint64_t lastId = 0;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace quorlo
