#pragma once

#include "app/settings/option_set.h"

#include <array>
#include <string>

namespace quorlo {

// The fields of a snippet that the menu's search looks in.
class SearchScopes : public OptionSet<SearchScopes> {
 public:
  using OptionSet::OptionSet;

  // Title, abbreviation, text.
  static constexpr std::array<SearchScopes, 3> members();
  static constexpr SearchScopes all() { return SearchScopes(7); }

  // What the settings show for a single member; "n/a" for anything else.
  std::u16string displayString() const;
  // For logs: "<SearchScopes: name = Title, Text>".
  std::string description() const;
};

inline constexpr SearchScopes kTitleScope(1);
inline constexpr SearchScopes kAbbreviationScope(2);
inline constexpr SearchScopes kTextScope(4);

constexpr std::array<SearchScopes, 3> SearchScopes::members() {
  return {kTitleScope, kAbbreviationScope, kTextScope};
}

}  // namespace quorlo
