#pragma once

#include "platform/event_poster.h"
#include "x11/keyboard/key_stream.h"
#include "x11/keyboard/key_translation.h"
#include "x11/selection/paste_target.h"

#include <functional>
#include <vector>

namespace quorlo {

class KeyboardService;
class X11InsertionTarget;
struct KeyChord;

// Presses keys by XTEST.
class X11EventPoster : public EventPoster {
 public:
  using PasteAnnouncement = std::function<void(const PasteTarget&, PasteSelection)>;

  // `pasteWillBePosted` is called before each paste chord.
  X11EventPoster(KeyboardService& keyboard, const X11InsertionTarget& target,
                 PasteAnnouncement pasteWillBePosted);

  void paste() override;
  void postKey(KeyCode code, ModifierFlags flags, PostLocation location, int count) override;
  bool canType(std::u16string_view text) const override;
  void typeText(std::u16string_view text) override;

 private:
  struct Chord {
    XKeycode key = 0;
    std::vector<XKeycode> modifiers;
  };
  Chord chordFor(KeyCode code, ModifierFlags flags) const;
  Chord usualPasteChord() const;
  Chord chordFor(const KeyChord& chord) const;
  std::vector<Chord> pasteChords(const std::vector<KeyChord>& chords) const;
  void press(const Chord& chord, int count) const;
  static void pressOnce(const Chord& chord, KeyStream::Output& output);
  void report(KeyCode code, ModifierFlags flags, int count) const;

  KeyboardService& keyboard_;
  const X11InsertionTarget& target_;
  PasteAnnouncement pasteWillBePosted_;
};

}  // namespace quorlo
