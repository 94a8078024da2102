#include "store/abbreviation_rules.h"

#include "text/graphemes.h"

namespace quorlo {

std::optional<AbbreviationFault> faultOfAbbreviation(std::u16string_view abbreviation) {
  if (abbreviation.find_first_of(u" \u00A0") != std::u16string_view::npos) {
    return AbbreviationFault::illegalCharacters;
  }
  if (abbreviation.size() > kLongestAbbreviation && graphemeCount(abbreviation) > kLongestAbbreviation) {
    return AbbreviationFault::tooLong;
  }
  return std::nullopt;
}

}  // namespace quorlo
