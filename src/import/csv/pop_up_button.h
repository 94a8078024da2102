#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// The choice of a column: "None", a separator line, and one item for each column.
struct PopUpButton {
  static constexpr std::size_t kNoneItem = 0;
  static constexpr std::size_t kSeparatorItem = 1;  // has no title and cannot be chosen
  static constexpr std::size_t kFirstColumnItem = 2;

  std::vector<std::u16string> items;
  std::size_t selectedIndex = kNoneItem;

  std::optional<std::size_t> selectedColumn() const {
    if (selectedIndex < kFirstColumnItem) return std::nullopt;
    return selectedIndex - kFirstColumnItem;
  }
};

}  // namespace quorlo
