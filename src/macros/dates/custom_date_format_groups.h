#pragma once

#include "macros/dates/custom_date_format.h"

#include <string>
#include <vector>

namespace quorlo {

// Tokens of a kind that the editor of custom formats offers together.
struct DateTokenGroup {
  std::u16string label;  // localised
  int sortIndex;         // within its editor
  std::vector<QLDateToken> tokens;
};

// What the editors of a date's and of a time's format offer, in the order in which they show it. The year's
// tokens are those of the week-based year. A token's example is formatCustomDate of its text.
std::vector<DateTokenGroup> dateTokenGroups();
std::vector<DateTokenGroup> timeTokenGroups();

}  // namespace quorlo
