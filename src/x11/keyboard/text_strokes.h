#pragma once

#include "x11/keyboard/key_map.h"
#include "x11/keyboard/key_reader.h"

#include <optional>
#include <string_view>
#include <vector>

namespace quorlo {

// A key, pressed while the modifiers are held.
struct TextStroke {
  XKeycode key;
  std::vector<XKeycode> modifiers;
};

// The keys that type the text one after the other in the layout while `locks` are in effect. Shift and AltGr
// are pressed where the layout needs them; absent when it has no key for one of the characters. Pure.
std::optional<std::vector<TextStroke>> strokesFor(std::u16string_view text, const KeyMap& map,
                                                  KeyMap::LayoutIndex layout, const KeyReader::Locks& locks);

}  // namespace quorlo
