#include "x11/keyboard/sharing/key_definitions.h"

#include "x11/connection/raw_request.h"
#include "x11/connection/xcb_xkb.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>
#include <utility>

namespace quorlo {

namespace {

constexpr std::uint16_t kKeyParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_KEY_ACTIONS |
                                    XCB_XKB_MAP_PART_KEY_BEHAVIORS | XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS |
                                    XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
constexpr std::uint16_t kSharedParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_VIRTUAL_MODS;
constexpr std::uint16_t kResizeTypes = 1;

// The lists of a map as they stand in the requests and replies, one after the other. xcb's own functions for
// them do not read what servers send.
class WireReader {
 public:
  explicit WireReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  template <class T>
  T next() {
    T value{};
    if (position_ + sizeof(T) <= bytes_.size()) {
      std::memcpy(&value, bytes_.data() + position_, sizeof(T));
    } else {
      isShort_ = true;
    }
    position_ += sizeof(T);
    return value;
  }
  void align() { position_ = (position_ + 3) / 4 * 4; }
  bool isShort() const { return isShort_; }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t position_ = 0;
  bool isShort_ = false;
};

template <class T>
void append(KeyDefinitions::Bytes& bytes, const T& value) {
  // GCC 12 takes an insertion at the end for an overflow when it builds for the thread sanitizer.
  const auto size = bytes.size();
  bytes.resize(size + sizeof(T));
  std::memcpy(bytes.data() + size, &value, sizeof(T));
}

void align(KeyDefinitions::Bytes& bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
}

// A type is sent with less than it is received with.
KeyDefinitions::Bytes readType(WireReader& reader) {
  KeyDefinitions::Bytes type;
  const auto header = reader.next<xcb_xkb_set_key_type_t>();
  append(type, header);
  for (int i = 0; i < header.nMapEntries; ++i) {
    const auto entry = reader.next<xcb_xkb_kt_map_entry_t>();
    append(type, xcb_xkb_kt_set_map_entry_t{entry.level, entry.mods_mods, entry.mods_vmods});
  }
  if (header.preserve == 0) return type;
  for (int i = 0; i < header.nMapEntries; ++i) {
    const auto kept = reader.next<xcb_xkb_mod_def_t>();
    append(type, xcb_xkb_kt_set_map_entry_t{kept.mask, kept.realMods, kept.vmods});
  }
  return type;
}

}  // namespace

std::optional<KeyDefinitions> readKeyDefinitions(const XConnection& connection, std::uint16_t device) {
  const auto reply = connection.reply(
      xcb_xkb_get_map_reply, xcb_xkb_get_map(connection.get(), device, kKeyParts | kSharedParts, 0, 0, 0, 0,
                                             0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  if (!reply || reply->maxKeyCode < reply->minKeyCode) return std::nullopt;
  const auto* first = reinterpret_cast<const std::uint8_t*>(reply.get());
  WireReader reader(std::span(first, 32 + std::size_t{reply->length} * 4).subspan(sizeof *reply));
  KeyDefinitions map;
  map.firstKeycode = reply->minKeyCode;
  map.keys.resize(static_cast<std::size_t>(reply->maxKeyCode - reply->minKeyCode) + 1);
  KeyDefinition ignored;
  const auto key = [&](std::size_t keycode) -> KeyDefinition& {
    const auto index = keycode - map.firstKeycode;
    return index < map.keys.size() ? map.keys[index] : ignored;
  };

  for (int i = 0; i < reply->nTypes; ++i) map.types.push_back(readType(reader));
  for (std::size_t i = 0; i < reply->nKeySyms; ++i) {
    auto& each = key(reply->firstKeySym + i);
    const auto header = reader.next<xcb_xkb_key_sym_map_t>();
    std::ranges::copy(header.kt_index, each.types.begin());
    each.groupInfo = header.groupInfo;
    each.width = header.width;
    for (int symbol = 0; symbol < header.nSyms; ++symbol)
      each.symbols.push_back(reader.next<std::uint32_t>());
  }
  std::vector<std::uint8_t> counts(reply->nKeyActions);
  for (auto& count : counts) count = reader.next<std::uint8_t>();
  reader.align();
  for (std::size_t i = 0; i < counts.size(); ++i) {
    for (int action = 0; action < counts[i]; ++action) {
      key(reply->firstKeyAction + i).actions.push_back(reader.next<std::array<std::uint8_t, 8>>());
    }
  }
  for (int i = 0; i < reply->totalKeyBehaviors; ++i) {
    const auto entry = reader.next<std::array<std::uint8_t, 4>>();
    key(entry[0]).behavior = {entry[1], entry[2]};
  }
  for (std::size_t i = 0; i < map.virtualModifiers.size(); ++i) {
    if ((reply->virtualMods >> i & 1U) != 0) map.virtualModifiers[i] = reader.next<std::uint8_t>();
  }
  reader.align();
  for (int i = 0; i < reply->totalKeyExplicit; ++i) {
    const auto entry = reader.next<xcb_xkb_set_explicit_t>();
    key(entry.keycode).explicitParts = entry.explicitComponents;
  }
  reader.align();
  for (int i = 0; i < reply->totalModMapKeys; ++i) {
    const auto entry = reader.next<xcb_xkb_key_mod_map_t>();
    key(entry.keycode).modifiers = entry.mods;
  }
  reader.align();
  for (int i = 0; i < reply->totalVModMapKeys; ++i) {
    const auto entry = reader.next<xcb_xkb_key_v_mod_map_t>();
    key(entry.keycode).virtualModifiers = entry.vmods;
  }
  if (reader.isShort()) return std::nullopt;
  return map;
}

std::vector<KeyRange> differingKeys(const KeyDefinitions& before, const KeyDefinitions& after) {
  std::vector<KeyRange> ranges;
  for (std::size_t i = 0; i < std::min(before.keys.size(), after.keys.size()); ++i) {
    if (before.keys[i] == after.keys[i]) continue;
    if (!ranges.empty() && ranges.back().end == i) {
      ++ranges.back().end;
    } else {
      ranges.push_back({i, i + 1});
    }
  }
  return ranges;
}

namespace {

void appendKeys(xcb_xkb_set_map_request_t& request, KeyDefinitions::Bytes& values, const KeyDefinitions& map,
                KeyRange range, const KeyDefinitions::Bytes& virtualModifiers) {
  const auto keys = std::span(map.keys).subspan(range.begin, range.end - range.begin);
  const auto first = static_cast<std::uint8_t>(map.firstKeycode + range.begin);
  const auto count = static_cast<std::uint8_t>(keys.size());
  request.firstKeySym = request.firstKeyAction = request.firstKeyBehavior = first;
  request.firstKeyExplicit = request.firstModMapKey = request.firstVModMapKey = first;
  request.nKeySyms = request.nKeyActions = request.nKeyBehaviors = count;
  request.nKeyExplicit = request.nModMapKeys = request.nVModMapKeys = count;

  for (const auto& key : keys) {
    xcb_xkb_key_sym_map_t header{};
    std::ranges::copy(key.types, header.kt_index);
    header.groupInfo = key.groupInfo;
    header.width = key.width;
    header.nSyms = static_cast<std::uint16_t>(key.symbols.size());
    append(values, header);
    for (const auto symbol : key.symbols) append(values, symbol);
    request.totalSyms = static_cast<std::uint16_t>(request.totalSyms + key.symbols.size());
  }
  for (const auto& key : keys) values.push_back(static_cast<std::uint8_t>(key.actions.size()));
  align(values);
  for (const auto& key : keys) {
    for (const auto& action : key.actions) append(values, action);
    request.totalActions = static_cast<std::uint16_t>(request.totalActions + key.actions.size());
  }
  const auto appendSet = [&](std::uint8_t& total, auto isSet, auto entryOf) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (!isSet(keys[i])) continue;
      append(values, entryOf(static_cast<std::uint8_t>(first + i), keys[i]));
      ++total;
    }
    align(values);
  };
  appendSet(
      request.totalKeyBehaviors,
      [](const KeyDefinition& key) { return key.behavior != std::array<std::uint8_t, 2>{}; },
      [](std::uint8_t keycode, const KeyDefinition& key) {
        return std::array<std::uint8_t, 4>{keycode, key.behavior[0], key.behavior[1], 0};
      });
  values.insert(values.end(), virtualModifiers.begin(), virtualModifiers.end());
  align(values);
  appendSet(
      request.totalKeyExplicit, [](const KeyDefinition& key) { return key.explicitParts != 0; },
      [](std::uint8_t keycode, const KeyDefinition& key) {
        return xcb_xkb_set_explicit_t{keycode, key.explicitParts};
      });
  appendSet(
      request.totalModMapKeys, [](const KeyDefinition& key) { return key.modifiers != 0; },
      [](std::uint8_t keycode, const KeyDefinition& key) {
        return xcb_xkb_key_mod_map_t{keycode, key.modifiers};
      });
  appendSet(
      request.totalVModMapKeys, [](const KeyDefinition& key) { return key.virtualModifiers != 0; },
      [](std::uint8_t keycode, const KeyDefinition& key) {
        return xcb_xkb_key_v_mod_map_t{keycode, 0, key.virtualModifiers};
      });
}

}  // namespace

void writeKeyDefinitions(const XConnection& connection, std::uint16_t device, const KeyDefinitions& wanted,
                         const KeyDefinitions& present, const std::vector<KeyRange>& ranges) {
  bool sharedPartsDiffer =
      wanted.types != present.types || wanted.virtualModifiers != present.virtualModifiers;
  for (const auto& range : ranges) {
    xcb_xkb_set_map_request_t request{};
    request.deviceSpec = device;
    request.present = kKeyParts;
    request.minKeyCode = wanted.firstKeycode;
    request.maxKeyCode = static_cast<std::uint8_t>(wanted.firstKeycode + wanted.keys.size() - 1);
    KeyDefinitions::Bytes values;
    KeyDefinitions::Bytes virtualModifiers;
    // The first request brings what the keys of all refer to.
    if (std::exchange(sharedPartsDiffer, false)) {
      request.present |= kSharedParts;
      request.flags = kResizeTypes;
      request.nTypes = static_cast<std::uint8_t>(wanted.types.size());
      for (const auto& type : wanted.types) values.insert(values.end(), type.begin(), type.end());
      request.virtualMods = 0xFFFF;
      virtualModifiers.assign(wanted.virtualModifiers.begin(), wanted.virtualModifiers.end());
    }
    appendKeys(request, values, wanted, range, virtualModifiers);
    sendRaw(connection, xcb_xkb_id, XCB_XKB_SET_MAP, request, std::move(values));
  }
}

}  // namespace quorlo
