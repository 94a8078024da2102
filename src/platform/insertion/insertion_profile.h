#pragma once

#include "base/result.h"
#include "platform/key_codes.h"
#include "platform/main_queue.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorlo {

// A key with the modifiers held while it is pressed: a named key by its code, any other by the character that
// it types, at its place in the layout.
struct KeyChord {
  ModifierFlags modifiers = 0;
  std::variant<KeyCode, char32_t> key;

  bool operator==(const KeyChord&) const = default;
};

enum class InsertionMethod {
  paste,
  type,  // key by key
  none,  // abbreviations do not expand
};

// How an application takes what is inserted into it. The default suits nearly all.
struct InsertionProfile {
  InsertionMethod method = InsertionMethod::paste;
  // Pressed one after the other to paste; empty: the chord of the desktop, Ctrl+V.
  std::vector<KeyChord> pasteChords = {};
  // Pastes the selection (PRIMARY) rather than the clipboard, as terminals do.
  bool pastesSelection = false;
  // Between moving the caret and the keys that the user typed meanwhile.
  Seconds pauseAfterCaretMoves{0};

  bool operator==(const InsertionProfile&) const = default;
};

// One of a terminal: Shift+Insert, which pastes the selection in most of them.
InsertionProfile terminalProfile();

// As people write a profile (docs/formats.md): "paste Ctrl+R Plus, pause 0.2", "terminal", "type", "off".
// The error says what to write instead. toText() gives a text that reads as the same profile.
Result<InsertionProfile> parseInsertionProfile(std::string_view text);
std::string toText(const InsertionProfile& profile);

}  // namespace quorlo
