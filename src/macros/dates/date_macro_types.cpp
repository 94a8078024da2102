#include "macros/dates/date_macro_types.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace quorlo {
namespace {

// The names stand in the order of the enumeration.
template <class Enumeration, std::size_t count>
std::optional<Enumeration> named(const std::array<std::u16string_view, count>& names,
                                 std::u16string_view name) {
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) return std::nullopt;
  return static_cast<Enumeration>(found - names.begin());
}

constexpr std::array<std::u16string_view, 6> kFormats{u"none", u"short", u"medium",
                                                      u"long", u"full",  u"custom"};
constexpr std::array<std::u16string_view, 6> kUnits{u"seconds", u"minutes", u"hours",
                                                    u"days",    u"months",  u"years"};

}  // namespace

std::optional<DateAndTimeMacroDateFormat> dateAndTimeMacroDateFormat(std::u16string_view rawValue) {
  return named<DateAndTimeMacroDateFormat>(kFormats, rawValue);
}

std::optional<DateAndTimeMacroMathType> dateAndTimeMacroMathType(std::u16string_view rawValue) {
  return named<DateAndTimeMacroMathType>(kUnits, rawValue);
}

}  // namespace quorlo
