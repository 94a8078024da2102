#pragma once

#include "platform/typing_context.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

namespace quorlo {

// What the services of the session know of the place where the user types, in one answer. The first obstacle
// that holds is the one that is named.
class SessionTypingContext : public TypingContext {
 public:
  // Each is asked for every key and may be empty: then nothing in this session can tell.
  struct Sources {
    std::function<bool()> keyboardIsTaken = {};
    std::function<bool()> passwordFieldHasFocus = {};
    std::function<bool()> inputMethodIsActive = {};
    // Of the active application and `keyboardIsTaken`; see TypingContext::stamp. Without one it cannot be
    // told.
    std::function<std::uint64_t()> stamp = {};
  };

  explicit SessionTypingContext(Sources sources) : sources_(std::move(sources)) {}

  std::optional<TypingObstacle> obstacle() const override {
    const auto holds = [](const std::function<bool()>& source) { return source && source(); };
    if (holds(sources_.keyboardIsTaken)) return TypingObstacle::keyboardIsTaken;
    if (holds(sources_.passwordFieldHasFocus)) return TypingObstacle::passwordField;
    if (holds(sources_.inputMethodIsActive)) return TypingObstacle::inputMethod;
    return std::nullopt;
  }

  std::uint64_t stamp() const override {
    const auto stamp = sources_.stamp ? sources_.stamp() : 0;
    return stamp == 0 ? 0 : stamp + changes_;
  }
  // A password field has or loses the focus, or the input method is another one. Main thread.
  void noteChange() { ++changes_; }

 private:
  Sources sources_;
  std::atomic<std::uint64_t> changes_ = 0;
};

}  // namespace quorlo
