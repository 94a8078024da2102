#pragma once

namespace quorlo {

// What completes an abbreviation. The raw values are stored.
enum class AbbreviationTriggerType { lastSymbol = 1, delimiterKey = 2 };

}  // namespace quorlo
