#pragma once

#include "platform/accessibility_trust.h"
#include "x11/connection/x_connection.h"
#include "x11/keyboard/key_reader.h"
#include "x11/keyboard/key_stream.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// The keyboards of an X server: the physical ones (slave devices), which can be grabbed, and the XTEST
// device, through which keys are pressed for the applications. Physical keyboards that are grabbed float:
// applications see nothing of them, and nothing that is done to the session's keyboard reaches them.
//
// Keyboards are grabbed, shared with and asked for by one thread; keys may be pressed, and the map, the locks
// and what is pressed be asked for, from any.
class KeyboardLink : public KeyStream::Output {
 public:
  using Device = std::uint16_t;
  using HeldKeys = std::vector<std::pair<Device, XKeycode>>;

  explicit KeyboardLink(XConnection& connection);

  // What of this server keeps from watching and pressing keys for good. With any the link does nothing.
  const std::vector<AccessibilityObstacle>& obstacles() const { return obstacles_; }
  // The keyboards in use, grabbed ones too.
  bool hasKeyboard() const;

  void selectEvents();

  enum class Grab { nothingNew, some, refused };
  // Grabs the keyboards that are not grabbed yet. Refused when there are some and none can be grabbed.
  Grab grabKeyboards();
  void ungrabKeyboards();
  bool hasGrabbed() const { return !grabbed_.empty(); }
  // All keys down on the physical keyboards.
  HeldKeys heldKeys() const;
  // What applications see as held.
  std::vector<XKeycode> pressedKeys() const;
  // Lets go what is held by XTEST alone.
  void releaseXtestKeys();
  // What applications see as held of the keys that change what others do.
  std::vector<XKeycode> pressedModifiers() const;

  // The map that applications see for keys pressed through `press`.
  std::optional<KeyMap> map() const;
  KeyReader::Locks locks() const;
  // Makes the keys pressed from now on those of this keyboard, since each may have a layout of its own. True
  // when the map has changed by that.
  bool useMapOf(Device keyboard);
  // The session's keyboard map or locks were changed: the floating keyboards follow.
  void shareMap();
  void shareKeysyms();
  void shareLocks(const KeyReader::Locks& locks);

  void press(XKeycode keycode) override;
  void release(XKeycode keycode) override;
  void flush() override { connection_.flush(); }

  // The session's map is that of another keyboard now; the user has chosen one for all keyboards; single
  // keysyms are others.
  enum class MapChange { replaced, chosen, keysyms };
  // What an event says; at most one of these.
  struct Change {
    std::optional<PhysicalKey> key;
    std::uint32_t time = 0;  // of the key, in milliseconds of the server
    bool keyboardsChanged = false;
    std::optional<MapChange> map;
    std::optional<KeyReader::Locks> locks;
  };
  Change read(const xcb_generic_event_t& event);

 private:
  struct Keyboards {
    std::vector<Device> attached;  // physical keyboards in use and not grabbed
    std::size_t floating = 0;      // those that somebody has grabbed
    Device xtest = 0;
    bool ofWayland = false;  // the server takes its keys from a Wayland compositor
  };
  Keyboards findKeyboards() const;
  void findObstacles();
  bool isXtest(Device device) const;
  void selectMapChanges(Device device) const;
  void appendHeldKeys(Device device, HeldKeys& held) const;

  XConnection& connection_;
  std::vector<AccessibilityObstacle> obstacles_;
  std::uint8_t inputOpcode_ = 0;
  std::uint8_t xkbFirstEvent_ = 0;
  Device masterKeyboard_ = 0;
  Device xtestKeyboard_ = 0;
  std::set<Device> grabbed_;
  Device mapSource_ = 0;  // the keyboard whose map the XTEST keyboard has; 0 when in doubt
};

}  // namespace quorlo
