#pragma once

#include <string>
#include <string_view>

namespace quorlo {

// A text of the user's, short enough to be read in a message: 60 UTF-16 units, and "…" for what is cut.
std::u16string quotation(std::u16string_view text);

}  // namespace quorlo
