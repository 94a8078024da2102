#pragma once

#include "platform/accessibility_trust.h"
#include "x11/connection/x_connection.h"
#include "x11/keyboard/key_reader.h"
#include "x11/keyboard/key_stream.h"
#include "x11/keyboard/keyboard_events.h"
#include "x11/keyboard/sharing/keyboard_controls.h"
#include "x11/keyboard/sharing/map_sharing.h"

#include <atomic>
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
// While they float they follow what other programs do to the session's keyboard, so that keys are read as
// applications read them, and the keyboards are as the user wants them when they are let go.
//
// Keyboards are grabbed, changed and asked for by one thread; keys may be pressed, and the map, the locks and
// what is pressed be asked for, from any.
class KeyboardLink : public KeyStream::Output {
 public:
  using Device = std::uint16_t;
  using HeldKeys = std::vector<std::pair<Device, XKeycode>>;

  explicit KeyboardLink(XConnection& connection);

  // What of this server keeps from watching and pressing keys for good. With any the link does nothing.
  const std::vector<AccessibilityObstacle>& obstacles() const { return obstacles_; }
  // The keyboards in use, grabbed ones too.
  bool hasKeyboard() const;

  void selectEvents() const { events_.select(connection_); }
  KeyboardChange read(const xcb_generic_event_t& event) const { return events_.read(event); }

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
  KeyReader::Locks locks() override;
  // The session's keyboard makes a modifier that is tapped hold for the next key.
  bool hasStickyKeys() const { return quorlo::hasStickyKeys(connection_, masterKeyboard_); }
  // Makes the keys pressed from now on those of this keyboard, since each may have a layout of its own. True
  // when the map that applications see is another one.
  bool useMapOf(Device keyboard) { return maps_.useMapOf(keyboard, grabbed_); }
  // A keyboard map was changed. True when it may be the session's: `followMap` is to be called.
  bool noteMapChange(Device device);
  // The grabbed keyboards take over what was changed of the session's keyboard. True when the map that
  // applications see is another one.
  bool followMap() { return maps_.follow(grabbed_); }
  // Takes away modifiers that hold without a key, by Sticky Keys; tells which are to be locked again.
  std::uint8_t freeStuckModifiers();
  void lockModifiers(std::uint8_t modifiers);
  void followControls();
  void followLocks(const KeyReader::Locks& locks);

  void press(XKeycode keycode) override;
  void release(XKeycode keycode) override;
  void flush() override { connection_.flush(); }
  void taken(PressId press) override { report(PressReport::taken, press); }
  void settled(PressId press) override { report(PressReport::settled, press); }
  // Presses are reported to this window of the guard from now on; to none when it is XCB_WINDOW_NONE.
  void setGuard(xcb_window_t window, xcb_atom_t messageType);

 private:
  struct Keyboards {
    std::vector<Device> attached;  // physical keyboards in use and not grabbed
    std::size_t floating = 0;      // those that somebody has grabbed
    Device xtest = 0;
    bool ofWayland = false;  // the server takes its keys from a Wayland compositor
  };
  Keyboards findKeyboards() const;
  void findObstacles();
  void report(PressReport report, PressId press) const;
  bool isXtest(Device device) const;
  bool grab(Device device) const;
  void lock(Device device, const KeyReader::Locks& locks) const;
  void appendHeldKeys(Device device, HeldKeys& held) const;

  XConnection& connection_;
  std::vector<AccessibilityObstacle> obstacles_;
  KeyboardEvents events_;
  Device masterKeyboard_ = 0;
  Device xtestKeyboard_ = 0;
  std::atomic<std::uint8_t> latched_ = 0;  // as last heard
  std::atomic<std::uint8_t> stuck_ = 0;
  std::set<Device> grabbed_;
  std::set<Device> refused_;  // by another program, which was logged
  MapSharing maps_{connection_, 0};
  std::atomic<xcb_window_t> guardWindow_ = XCB_WINDOW_NONE;
  xcb_atom_t guardMessage_ = XCB_ATOM_NONE;
};

}  // namespace quorlo
