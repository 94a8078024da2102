#pragma once

#include "platform/event_tap.h"
#include "x11/keyboard/key_map.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>

struct xkb_state;
struct xkb_compose_table;
struct xkb_compose_state;

namespace quorlo {

// Follows the keys of the physical keyboards, all of them as one, and tells what each press types: the
// keyboard state of a session without its display server. One thread.
class KeyReader {
 public:
  struct Locks {
    std::uint32_t latchedModifiers = 0;
    std::uint32_t lockedModifiers = 0;
    std::int32_t latchedGroup = 0;
    std::uint32_t lockedGroup = 0;
  };
  struct Reading {
    KeyDownEvent event;
    // The last key of a dead-key or Compose sequence: the application, which composes for itself, waits
    // for it.
    bool endsComposition = false;
  };

  // `locale` decides which Compose sequences there are: the value of LC_CTYPE.
  KeyReader(KeyMap map, const std::string& locale);
  ~KeyReader();
  KeyReader(KeyReader&&) noexcept;
  KeyReader& operator=(KeyReader&&) noexcept;

  const KeyMap& map() const { return map_; }
  // The keys now down stay down; a composition under way is dropped. Call setLocks() afterwards.
  void setMap(KeyMap map);
  std::uint32_t layout() const;

  // What a press of the key types with the keys now down, moving a composition on. Then call press().
  Reading readPress(XKeycode keycode);
  // The same for an auto-repeat, which is no part of a composition.
  KeyDownEvent readRepeat(XKeycode keycode) const;

  void press(XKeycode keycode);
  void release(XKeycode keycode);

  // What is locked or latched for the session, Caps Lock and the layout in effect, not by keys seen here.
  void setLocks(const Locks& locks);
  bool hasLatches() const;

 private:
  KeyDownEvent read(XKeycode keycode) const;
  ModifierFlags flags() const;
  bool isActive(const char* modifier) const;

  KeyMap map_;
  std::set<XKeycode> down_;
  std::unique_ptr<xkb_state, void (*)(xkb_state*)> state_;
  std::unique_ptr<xkb_compose_table, void (*)(xkb_compose_table*)> composeTable_;
  std::unique_ptr<xkb_compose_state, void (*)(xkb_compose_state*)> compose_;  // null: no sequences known
};

}  // namespace quorlo
