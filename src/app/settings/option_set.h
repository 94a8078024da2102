#pragma once

#include <compare>
#include <cstdint>

namespace quorlo {

// A set of members that are single bits of an integer, its raw value, by which it is stored and ordered.
// `Self` is the class that derives from this one.
template <class Self>
class OptionSet {
 public:
  using RawValue = std::int64_t;

  constexpr OptionSet() = default;
  constexpr explicit OptionSet(RawValue rawValue) : rawValue_(rawValue) {}

  constexpr RawValue rawValue() const { return rawValue_; }
  constexpr bool empty() const { return rawValue_ == 0; }
  constexpr bool contains(Self other) const { return (rawValue_ & other.rawValue()) == other.rawValue(); }

  friend constexpr Self operator|(Self a, Self b) { return Self(a.rawValue() | b.rawValue()); }
  friend constexpr bool operator==(Self a, Self b) { return a.rawValue() == b.rawValue(); }
  friend constexpr std::strong_ordering operator<=>(Self a, Self b) { return a.rawValue() <=> b.rawValue(); }

 private:
  RawValue rawValue_ = 0;
};

}  // namespace quorlo
