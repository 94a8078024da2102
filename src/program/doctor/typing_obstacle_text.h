#pragma once

#include "platform/typing_context.h"

#include <string>

namespace quorlo {

// Why nothing expands at the moment, as a sentence, and what the user can do; the latter may be empty.
// `inputMethod` is the one that is active, if any.
struct TypingObstacleText {
  std::string what;
  std::string remedy;
};
TypingObstacleText describe(TypingObstacle obstacle, const std::string& inputMethod);

}  // namespace quorlo
