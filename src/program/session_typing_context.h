#pragma once

#include "platform/typing_context.h"

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
  };

  explicit SessionTypingContext(Sources sources) : sources_(std::move(sources)) {}

  std::optional<TypingObstacle> obstacle() const override {
    const auto holds = [](const std::function<bool()>& source) { return source && source(); };
    if (holds(sources_.keyboardIsTaken)) return TypingObstacle::keyboardIsTaken;
    if (holds(sources_.passwordFieldHasFocus)) return TypingObstacle::passwordField;
    if (holds(sources_.inputMethodIsActive)) return TypingObstacle::inputMethod;
    return std::nullopt;
  }

 private:
  Sources sources_;
};

}  // namespace quorlo
