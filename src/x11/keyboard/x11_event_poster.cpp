#include "x11/keyboard/x11_event_poster.h"

#include "base/log.h"
#include "platform/insertion/insertion_profile.h"
#include "x11/desktop/x11_insertion_target.h"
#include "x11/keyboard/keyboard_service.h"
#include "x11/keyboard/text_strokes.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <variant>

namespace quorlo {

namespace {

struct ModifierKey {
  ModifierFlags flag;
  XKeysym keysym;
  XKeycode usualPlace;
};
constexpr auto kModifierKeys = std::to_array<ModifierKey>({
    {modifier::kCommand, XKB_KEY_Control_L, 37},
    {modifier::kControl, XKB_KEY_Super_L, 133},
    {modifier::kOption, XKB_KEY_Alt_L, 64},
    {modifier::kShift, XKB_KEY_Shift_L, 50},
});

}  // namespace

X11EventPoster::X11EventPoster(KeyboardService& keyboard, const X11InsertionTarget& target,
                               PasteAnnouncement pasteWillBePosted)
    : keyboard_(keyboard), target_(target), pasteWillBePosted_(std::move(pasteWillBePosted)) {}

void X11EventPoster::paste() {
  if (keyboard_.map() == nullptr) return;
  const auto window = target_.window();
  const auto profile = target_.profile();
  const auto chords = pasteChords(profile.pasteChords);
  pasteWillBePosted_({window.window, window.processIdentifier}, profile.pastesSelection
                                                                    ? PasteSelection::clipboardAndPrimary
                                                                    : PasteSelection::clipboard);
  keyboard_.report({key::kV, modifier::kLeftCommandEvent, u"v", KeyDownEvent::Origin::posted});
  for (const auto& chord : chords) press(chord, 1);
}

void X11EventPoster::postKey(KeyCode code, ModifierFlags flags, PostLocation location, int count) {
  if (keyboard_.map() == nullptr) return;
  const auto chord = chordFor(code, flags);
  if (chord.key == 0) {
    logWarning("The keyboard layout has no key for the code " + std::to_string(code) +
               "; it is not pressed.");
    return;
  }
  if (location == PostLocation::session) report(code, flags, count);
  press(chord, count);
}

bool X11EventPoster::canType(std::u16string_view text) const {
  return keyboard_.map() != nullptr && strokesFor(text, *keyboard_.map(), keyboard_.layout(), {});
}

void X11EventPoster::typeText(std::u16string_view text) {
  if (keyboard_.map() == nullptr) return;
  const auto map = *keyboard_.map();
  const auto layout = keyboard_.layout();
  keyboard_.post([&](KeyStream::Output& output) {
    // With Caps Lock on, Shift types the small letters.
    const auto strokes = strokesFor(text, map, layout, output.locks());
    if (!strokes) return;
    for (const auto& stroke : *strokes) pressOnce({stroke.key, stroke.modifiers}, output);
  });
}

void X11EventPoster::press(const Chord& chord, int count) const {
  keyboard_.post([&](KeyStream::Output& output) {
    for (int i = 0; i < count; ++i) pressOnce(chord, output);
  });
}

void X11EventPoster::pressOnce(const Chord& chord, KeyStream::Output& output) {
  for (const auto modifier : chord.modifiers) output.press(modifier);
  output.press(chord.key);
  output.release(chord.key);
  for (auto it = chord.modifiers.rbegin(); it != chord.modifiers.rend(); ++it) output.release(*it);
}

X11EventPoster::Chord X11EventPoster::chordFor(KeyCode code, ModifierFlags flags) const {
  const auto& map = *keyboard_.map();
  const auto layout = keyboard_.layout();
  Chord chord{map.keyForCode(code, layout), {}};
  for (const auto& key : kModifierKeys) {
    if ((flags & key.flag) == 0) continue;
    const auto keycode = map.keyFor(key.keysym, layout);
    chord.modifiers.push_back(keycode != 0 ? keycode : key.usualPlace);
  }
  return chord;
}

// Absent keys are 0.
X11EventPoster::Chord X11EventPoster::chordFor(const KeyChord& wanted) const {
  if (const auto* const code = std::get_if<KeyCode>(&wanted.key)) return chordFor(*code, wanted.modifiers);
  const auto keysym = xkb_utf32_to_keysym(std::get<char32_t>(wanted.key));
  const auto& map = *keyboard_.map();
  auto modifiers = wanted.modifiers;
  auto key = map.keyForInAnyLayout(keysym, keyboard_.layout());
  if (key == 0) {
    key = map.keyForInAnyLayout(keysym, keyboard_.layout(), 1);
    modifiers |= modifier::kShift;
  }
  auto chord = chordFor(key::kV, modifiers);
  chord.key = key;
  return chord;
}

// Those that the table gives, or the usual one where there are none or the layout lacks one of their keys.
std::vector<X11EventPoster::Chord> X11EventPoster::pasteChords(const std::vector<KeyChord>& wanted) const {
  std::vector<Chord> chords;
  for (const auto& each : wanted) chords.push_back(chordFor(each));
  if (std::ranges::find(chords, 0, &Chord::key) != chords.end()) {
    logWarning("WARNING: #pC7hord - The keyboard layout lacks a key of the application's way of pasting.");
    chords.clear();
  }
  if (chords.empty()) chords.push_back(usualPasteChord());
  return chords;
}

// Toolkits find the shortcut of a key in the other layouts as well; where none has a v, the one chord that is
// left has no letter.
X11EventPoster::Chord X11EventPoster::usualPasteChord() const {
  const auto keyOfV = keyboard_.map()->keyForInAnyLayout(XKB_KEY_v, keyboard_.layout());
  if (keyOfV == 0) return chordFor(key::kHelp, modifier::kShift);
  auto chord = chordFor(key::kV, modifier::kCommand);
  chord.key = keyOfV;
  return chord;
}

void X11EventPoster::report(KeyCode code, ModifierFlags flags, int count) const {
  const auto& map = *keyboard_.map();
  const auto layout = keyboard_.layout();
  const auto keysym =
      map.keysym(map.keyForCode(code, layout), layout, (flags & modifier::kShift) != 0 ? 1 : 0);
  KeyDownEvent event{code, flags, {}, KeyDownEvent::Origin::posted};
  if (const auto named = charactersOfNamedKey(keysym)) {
    event.characters = {*named};
  } else if (const auto character = xkb_keysym_to_utf32(keysym); character != 0 && character < 0xD800) {
    event.characters = {static_cast<char16_t>(character)};
  }
  for (int i = 0; i < count; ++i) keyboard_.report(event);
}

}  // namespace quorlo
