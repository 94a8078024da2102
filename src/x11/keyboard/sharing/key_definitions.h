#pragma once

#include "x11/connection/x_connection.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace quorlo {

// What one key of a keyboard means to the X server.
struct KeyDefinition {
  std::array<std::uint8_t, 4> types{};  // one for each group
  std::uint8_t groupInfo = 0;
  std::uint8_t width = 0;
  std::vector<std::uint32_t> symbols;
  std::vector<std::array<std::uint8_t, 8>> actions;
  std::array<std::uint8_t, 2> behavior{};
  std::uint8_t explicitParts = 0;
  std::uint8_t modifiers = 0;
  std::uint16_t virtualModifiers = 0;
  bool operator==(const KeyDefinition&) const = default;
};

// The map of a keyboard, key by key: all that programs change of one by XKB requests, by xmodmap or by
// typing characters that the layout lacks. Compared and copied as a value.
struct KeyDefinitions {
  using Bytes = std::vector<std::uint8_t>;

  std::uint8_t firstKeycode = 0;
  std::vector<Bytes> types;  // as XkbSetMap sends them
  std::array<std::uint8_t, 16> virtualModifiers{};
  std::vector<KeyDefinition> keys;
  bool operator==(const KeyDefinitions&) const = default;

  bool hasKeysOf(const KeyDefinitions& other) const {
    return firstKeycode == other.firstKeycode && keys.size() == other.keys.size();
  }
};

// One round trip. Absent when the keyboard is gone.
std::optional<KeyDefinitions> readKeyDefinitions(const XConnection& connection, std::uint16_t device);

// A range of keys, by indexes.
struct KeyRange {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool operator==(const KeyRange&) const = default;
};
// The keys that two maps of the same keycodes define differently.
std::vector<KeyRange> differingKeys(const KeyDefinitions& before, const KeyDefinitions& after);

// Writes the keys in the ranges to the keyboard, and types and virtual modifiers where they differ from
// those `present` on it. The server is not waited for.
void writeKeyDefinitions(const XConnection& connection, std::uint16_t device, const KeyDefinitions& wanted,
                         const KeyDefinitions& present, const std::vector<KeyRange>& ranges);

}  // namespace quorlo
