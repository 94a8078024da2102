#pragma once

#include "base/observers.h"
#include "base/result.h"
#include "platform/event_tap.h"
#include "platform/main_queue.h"
#include "platform/shortcut.h"
#include "x11/keyboard/key_map.h"
#include "x11/keyboard/key_stream.h"
#include "x11/keyboard/keyboard_session.h"
#include "x11/keyboard/retry_pauses.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace quorlo {

// The keyboard of the desktop as the adapters for tap, poster, hold and layout share it. Opens another
// session when its X client was ended, begins a tap again that was given up, and ends when the X server is
// gone. Main thread.
class KeyboardService {
 public:
  static Result<std::unique_ptr<KeyboardService>> start(KeyboardOptions options, MainQueue& queue);

  // What keeps from watching and pressing keys, for good or at the moment.
  std::vector<AccessibilityObstacle> obstacles() const;
  // Called when they may be others.
  Subscription observeObstacles(std::function<void()> changed) {
    return obstacleObservers_.add(std::move(changed));
  }
  // Whether the server has all that it takes.
  bool isUsable() const { return session_ && session_->obstacles().empty(); }

  std::unique_ptr<EventTap::Port> createTap(EventTap::Callback callback, void* userInfo);
  // A key that this program posts, for the callback of the tap.
  void report(const KeyDownEvent& event);
  // Combinations that are no typing: the tap passes them on without asking.
  void setHotKeys(std::set<Shortcut> hotKeys);
  // While the screen is locked the tap passes every key on without asking: it is part of a password.
  void setScreenIsLocked(bool isLocked);

  HoldId beginHold();
  bool keepTrigger(HoldId hold);
  void endHold();
  // `pause`: how long no more of it is expected.
  void noteProgress(Seconds pause = Seconds(0));
  void post(const std::function<void(KeyStream::Output&)>& keys);

  // The keyboard map and the layout in effect; the map is null when the server is gone. Valid until the
  // next turn of the main queue.
  const KeyMap* map() const;
  std::uint32_t layout() const;

 private:
  class Port;

  KeyboardService(KeyboardOptions options, MainQueue& queue) : options_(std::move(options)), queue_(queue) {}
  std::function<void()> onMainThread(void (KeyboardService::*handle)());
  Status openSession();
  void reopenSession();
  void followWatching();
  void beginTap();
  std::chrono::seconds beginTapLater();  // after how long
  void closeTap();

  KeyboardOptions options_;
  MainQueue& queue_;
  std::unique_ptr<KeyboardSession> session_;       // null once the server is gone
  std::shared_ptr<TapConversation> conversation_;  // while a port lives
  RetryPauses retryPauses_;                        // before a tap begins again
  Observers<> obstacleObservers_;
  std::set<Shortcut> hotKeys_;
  bool screenIsLocked_ = false;
  mutable std::optional<KeyMap> map_;
  mutable std::uint64_t mapGeneration_ = 0;
  std::shared_ptr<char> alive_ = std::make_shared<char>();
};

}  // namespace quorlo
