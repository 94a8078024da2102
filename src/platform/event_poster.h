#pragma once

#include "platform/key_codes.h"

#include <string_view>

namespace quorlo {

// Where a posted key enters the stream of events.
enum class PostLocation {
  session,           // seen by this program's own tap, as KeyDownEvent::Origin::posted
  annotatedSession,  // delivered to the application only
};

// Synthetic key presses for the frontmost application. Main thread. Posting cannot fail as far as the
// caller can know.
class EventPoster {
 public:
  virtual ~EventPoster() = default;

  // Presses the chord by which the frontmost application pastes what is on the pasteboard, whatever the
  // keyboard layout is now. The tap sees it as the platform's own paste chord, Command-V.
  virtual void paste() = 0;

  // Presses and releases the key `count` times, back to back, with exactly the modifiers of `flags`:
  // modifiers that the user holds do not leak in, and are held again afterwards if they still are.
  virtual void postKey(KeyCode code, ModifierFlags flags, PostLocation location, int count = 1) = 0;

  // Whether the layout in effect has a key for every character of the text, with Shift and AltGr if need be.
  // Composed characters and line breaks have none.
  virtual bool canType(std::u16string_view text) const = 0;
  // Types a text that canType(), as a user would: no modifier held and no lock on changes it. Delivered to
  // the application only.
  virtual void typeText(std::u16string_view text) = 0;
};

}  // namespace quorlo
