#include "x11/keyboard/text_strokes.h"

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace quorlo {
namespace {

constexpr XKeycode kLastKeycode = 255;

std::vector<std::vector<XKeycode>> modifierChoices(const KeyMap& map, KeyMap::LayoutIndex layout) {
  const auto shift = map.keyForInAnyLayout(XKB_KEY_Shift_L, layout);
  const auto altGr = map.keyForInAnyLayout(XKB_KEY_ISO_Level3_Shift, layout);
  std::vector<std::vector<XKeycode>> choices{{}};
  if (shift != 0) choices.push_back({shift});
  if (altGr != 0) choices.push_back({altGr});
  if (shift != 0 && altGr != 0) choices.push_back({shift, altGr});
  return choices;
}

// Of several ways to type a character, the one with the fewest modifiers.
std::map<char32_t, TextStroke> strokesOf(const KeyMap& map, KeyMap::LayoutIndex layout,
                                         const KeyReader::Locks& locks) {
  std::map<char32_t, TextStroke> strokes;
  const auto first = static_cast<XKeycode>(xkb_keymap_min_keycode(map.get()));
  for (const auto& modifiers : modifierChoices(map, layout)) {
    const std::unique_ptr<xkb_state, void (*)(xkb_state*)> state(xkb_state_new(map.get()), &xkb_state_unref);
    for (const auto modifier : modifiers) xkb_state_update_key(state.get(), modifier, XKB_KEY_DOWN);
    xkb_state_update_mask(state.get(), xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_DEPRESSED), 0,
                          locks.lockedModifiers, 0, 0, layout);
    for (std::uint32_t key = first; key <= kLastKeycode; ++key) {
      const auto character = xkb_state_key_get_utf32(state.get(), key);
      if (character != 0) strokes.try_emplace(character, TextStroke{static_cast<XKeycode>(key), modifiers});
    }
  }
  return strokes;
}

bool isLead(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}

}  // namespace

std::optional<std::vector<TextStroke>> strokesFor(std::u16string_view text, const KeyMap& map,
                                                  KeyMap::LayoutIndex layout, const KeyReader::Locks& locks) {
  const auto known = strokesOf(map, layout, locks);
  std::vector<TextStroke> strokes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (isLead(text[i]) && i + 1 < text.size()) {
      character = 0x10000 + ((character & 0x3FFU) << 10U) + (text[++i] & 0x3FFU);
    }
    const auto found = known.find(character);
    if (found == known.end()) return std::nullopt;
    strokes.push_back(found->second);
  }
  return strokes;
}

}  // namespace quorlo
