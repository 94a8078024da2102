#include "store/context/property.h"

#include <compare>
#include <type_traits>

namespace quorlo {

std::partial_ordering compare(const ValueView& left, const ValueView& right) {
  if (left.index() != right.index()) {
    if (left.index() == 0) return std::partial_ordering::less;
    if (right.index() == 0) return std::partial_ordering::greater;
    return std::partial_ordering::unordered;
  }
  return std::visit(
      [&right](const auto& value) -> std::partial_ordering {
        using Held = std::decay_t<decltype(value)>;
        const auto& other = *std::get_if<Held>(&right);
        if constexpr (std::is_pointer_v<Held>) {
          return value == other ? std::partial_ordering::equivalent : std::partial_ordering::unordered;
        } else {
          return value <=> other;
        }
      },
      left);
}

}  // namespace quorlo
