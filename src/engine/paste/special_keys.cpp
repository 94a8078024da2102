#include "engine/paste/special_keys.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorlo {

std::optional<KeyCode> specialKeyCode(std::string_view name) {
  using Entry = std::pair<std::string_view, KeyCode>;
  static constexpr std::array kKeys{
      Entry{"return", key::kReturn},         Entry{"escape", key::kEscape},
      Entry{"delete", key::kForwardDelete},  Entry{"leftArrow", key::kLeftArrow},
      Entry{"rightArrow", key::kRightArrow}, Entry{"downArrow", key::kDownArrow},
      Entry{"upArrow", key::kUpArrow},       Entry{"backspace", key::kBackspace},
      Entry{"space", key::kSpace},           Entry{"tab", key::kTab},
  };
  const auto found = std::ranges::find(kKeys, name, &Entry::first);
  if (found == kKeys.end()) return std::nullopt;
  return found->second;
}

}  // namespace quorlo
