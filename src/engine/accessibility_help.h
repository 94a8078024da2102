#pragma once

#include "platform/accessibility_trust.h"

#include <string>

namespace quorlo {

// What the user should know of something that keeps Quorlo from watching and posting keys, localised.
struct AccessibilityHelp {
  std::u16string what;    // one sentence
  std::u16string remedy;  // what to do about it
};

AccessibilityHelp accessibilityHelp(AccessibilityObstacle obstacle);

}  // namespace quorlo
