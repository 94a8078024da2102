#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quorlo {

inline constexpr std::size_t kLongestAbbreviation = 30;  // user-perceived characters

enum class AbbreviationFault { illegalCharacters, tooLong };

// What forbids the abbreviation whatever else the library holds. The characters are looked at first: a
// space or a no-break space anywhere is illegal, everything else is allowed.
std::optional<AbbreviationFault> faultOfAbbreviation(std::u16string_view abbreviation);

}  // namespace quorlo
