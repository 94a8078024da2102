#pragma once

#include "platform/key_codes.h"

#include <cstdint>
#include <memory>
#include <string>

namespace quorlo {

struct KeyDownEvent {
  // A key that this program posted to the session itself, or the auto-repeat of a held key. It counts as
  // typed, but must not complete an abbreviation: it cannot be swallowed any more.
  enum class Origin { keyboard, posted };

  KeyCode keyCode = 0;
  ModifierFlags flags = 0;
  // The text that the key produces: composed by dead keys and Compose, "\r" for Return, "\t" for Tab,
  // "\x7f" for Backspace, a private-use character (key_codes.h) for keys without text, else empty.
  std::u16string characters;
  Origin origin = Origin::keyboard;
};

enum class TapEventType : std::uint32_t {
  keyDown = 10,
  keysPassedUnseen = 100,
  kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
};

enum class TapVerdict { pass, swallow };

// An active filter on every key-down event of the session: the callback decides, before any application
// sees the key, whether it is passed on. Modifier presses, key releases and keys posted by other programs
// are not reported; keys that this program posts to the session are (their verdict is ignored), those it
// posts to the annotated session are not.
//
// The callback runs on the main thread. An adapter that must wait for it elsewhere gives up after a
// deadline: it passes the key, disables the tap and calls back with kCGEventTapDisabledByTimeout once the
// main thread answers again. While the tap is disabled every key passes unseen.
//
// keysPassedUnseen: an enabled tap could not see some keys (the screen was locked, the keyboards were let go
// for a moment). As after kCGEventTapDisabledByTimeout, the keys seen before need not stand in front of the
// caret any more. The notice comes before the next key.
class EventTap {
 public:
  // `event` is null unless the type is keyDown, and null for a key-down that could not be read.
  using Callback = TapVerdict (*)(TapEventType type, const KeyDownEvent* event, void* userInfo);

  // A live tap, enabled when created. Destroying it ends the filter: keys reach the applications directly.
  class Port {
   public:
    virtual ~Port() = default;
    virtual void enable() = 0;
    virtual bool isEnabled() const = 0;
  };

  virtual ~EventTap() = default;

  // Null when the system does not allow or cannot make one. At most one port lives at a time. `userInfo`
  // must outlive the port.
  virtual std::unique_ptr<Port> create(Callback callback, void* userInfo) = 0;
};

}  // namespace quorlo
