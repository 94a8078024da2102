#pragma once

#include "base/result.h"
#include "x11/key_reader.h"
#include "x11/key_stream.h"
#include "x11/x_connection.h"

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

  // What the server lacks, for the user; absent when it has all.
  const std::optional<Error>& problem() const { return problem_; }

  void selectEvents();

  enum class Grab { nothingNew, some, refused };
  // Grabs the keyboards that are not grabbed yet. Refused when there are some and none can be grabbed.
  Grab grabKeyboards();
  void ungrabKeyboards();
  bool isGrabbed(Device device) const { return grabbed_.contains(device); }
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
  // The session's keyboard map or locks were changed: the floating keyboards follow.
  void shareMap(bool onlyKeysyms);
  void shareLocks(const KeyReader::Locks& locks);

  void press(XKeycode keycode) override;
  void release(XKeycode keycode) override;
  void flush() override { connection_.flush(); }

  // What an event says; at most one of these.
  struct Change {
    std::optional<PhysicalKey> key;
    std::uint32_t time = 0;  // of the key, in milliseconds of the server
    bool keyboardsChanged = false;
    bool mapChanged = false;
    bool onlyKeysymsChanged = false;
    std::optional<KeyReader::Locks> locks;
  };
  Change read(const xcb_generic_event_t& event) const;

 private:
  struct Keyboards {
    std::vector<Device> attached;  // physical keyboards in use and not grabbed
    Device xtest = 0;
  };
  Keyboards findKeyboards() const;
  bool isXtest(Device device) const;
  void appendHeldKeys(Device device, HeldKeys& held) const;

  XConnection& connection_;
  std::optional<Error> problem_;
  std::uint8_t inputOpcode_ = 0;
  std::uint8_t xkbFirstEvent_ = 0;
  Device masterKeyboard_ = 0;
  Device xtestKeyboard_ = 0;
  std::set<Device> grabbed_;
};

}  // namespace quorlo
