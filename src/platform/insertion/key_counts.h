#pragma once

#include "platform/insertion/toolkit.h"

#include <cstddef>
#include <functional>
#include <string_view>

namespace quorlo {

// How many presses of Backspace erase the text, and how many of Left pass it, with the caret behind it. They
// differ for combining sequences and emoji only: `toolkit` is asked for such a text alone.
// Seen in GTK 3, Qt 5 and Qt 6.
std::size_t backspacesOver(std::u16string_view text, const std::function<Toolkit()>& toolkit);
std::size_t leftPressesOver(std::u16string_view text, const std::function<Toolkit()>& toolkit);

}  // namespace quorlo
