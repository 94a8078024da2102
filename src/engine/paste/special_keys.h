#pragma once

#include "platform/key_codes.h"

#include <optional>
#include <string_view>

namespace quorlo {

// The key of a special-key name ("return", "leftArrow", ...); absent for a name that stands for no
// single key.
std::optional<KeyCode> specialKeyCode(std::string_view name);

}  // namespace quorlo
