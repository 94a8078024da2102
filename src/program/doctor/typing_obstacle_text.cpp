#include "program/doctor/typing_obstacle_text.h"

namespace quorlo {

TypingObstacleText describe(TypingObstacle obstacle, const std::string& inputMethod) {
  switch (obstacle) {
    case TypingObstacle::keyboardIsTaken:
      return {
          "Nothing expands at the moment: a lock screen, a prompt or another program has the keyboard for "
          "itself.",
          "Close its window, or leave its full screen."};
    case TypingObstacle::passwordField:
      return {"Nothing expands at the moment: the keys go into a password field.", ""};
    case TypingObstacle::inputMethod:
      return {"Nothing expands at the moment: the input method " + inputMethod + " makes text of the keys.",
              "Switch to a keyboard layout. To expand all the same: quorlo settings set "
              "ExpandWhileInputMethodIsActive on"};
  }
  return {};
}

}  // namespace quorlo
