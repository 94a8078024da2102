#pragma once

#include <string>
#include <vector>

namespace quorlo {

// The first of the names, each shortened and in the quotation marks of the user's language, with commas
// between.
std::u16string quotedNames(const std::vector<std::u16string>& names);

}  // namespace quorlo
