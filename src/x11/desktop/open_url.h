#pragma once

#include <string_view>

namespace quorlo {

// A scheme, a colon and something after it, in one word.
bool isAddress(std::string_view url);

// Has the desktop open the address in the program it has for it (xdg-open), without waiting for that.
// False if it is no address or xdg-open cannot be started; a failure of xdg-open itself is logged.
bool openInDesktop(std::string_view url);

}  // namespace quorlo
