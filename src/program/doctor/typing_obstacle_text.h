#pragma once

#include "engine/accessibility_help.h"
#include "platform/typing_context.h"

#include <string>

namespace quorlo {

// Why nothing expands where the user types, and what to do; `inputMethod` is the one that is active, if any.
AccessibilityHelp typingObstacleHelp(TypingObstacle obstacle, const std::string& inputMethod);

}  // namespace quorlo
