#pragma once

#include "platform/key_codes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {

struct KeyDownEvent {
  // Keys of the last two origins count as typed, but must not complete an abbreviation: they cannot be
  // swallowed any more.
  enum class Origin {
    keyboard,
    posted,  // to the session by this program itself, or the auto-repeat of a held key
    passed,  // a key or its auto-repeat that was passed unasked
  };

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
//
// Most keys of a text complete nothing. Those that the port is told of are passed without the callback, so
// that the main thread need not wake up for them, and are kept until the main thread takes them.
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

    // Keys for which this is true are passed and kept. Empty, as in the beginning, for none. Called on any
    // thread, never once the call that replaces it has returned; it must not wait. The callback is asked all
    // the same when many keys are kept already, or while a key or notice that came before is still on its way
    // to it.
    virtual void passUnasked(std::function<bool(const KeyDownEvent&)> needsNoVerdict) = 0;
    // The keys kept since the last call, in their order. Within the callback: all of them were pressed before
    // the key or notice that it is called for, and after the one before.
    virtual std::vector<KeyDownEvent> takePassedKeys() = 0;
  };

  virtual ~EventTap() = default;

  // Null when the system does not allow or cannot make one. At most one port lives at a time. `userInfo`
  // must outlive the port.
  virtual std::unique_ptr<Port> create(Callback callback, void* userInfo) = 0;
};

}  // namespace quorlo
