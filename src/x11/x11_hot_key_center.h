#pragma once

#include "base/life_token.h"
#include "platform/hot_key_center.h"
#include "platform/main_queue.h"
#include "x11/key_map.h"
#include "x11/x_connection.h"
#include "x11/x_event_loop.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class KeyboardLayout;
class KeyboardService;

// Passive grabs of single keys on the session's keyboard. They see the keys of a physical keyboard as well as
// those that the tap passes on, which is told to leave the combinations unjudged.
class X11HotKeyCenter : public HotKeyCenter {
 public:
  struct Options {
    std::string display;                   // as in DISPLAY
    std::function<void()> connectionLost;  // once, on the thread of this object
  };
  // The references must outlive the center.
  static Result<std::unique_ptr<X11HotKeyCenter>> connect(Options options, MainQueue& queue,
                                                          KeyboardService& keyboard,
                                                          const KeyboardLayout& layout);
  ~X11HotKeyCenter() override;

  Result<Subscription> registerHotKey(Shortcut shortcut, std::function<void()> pressed) override;
  Subscription suspend() override;

 private:
  struct Key {
    XKeycode keycode = 0;
    std::uint32_t modifiers = 0;  // without locks
    auto operator<=>(const Key&) const = default;
  };
  struct HotKey {
    Key key;  // the one grabbed; keycode 0 while none is
    std::function<void()> pressed;
  };

  X11HotKeyCenter(std::unique_ptr<XConnection> x, Options options, MainQueue& queue,
                  KeyboardService& keyboard, const KeyboardLayout& layout);

  void handleEvent(const xcb_generic_event_t& event);  // on the loop's thread
  void keyPressed(Key key);
  void keyboardChanged();
  void unregister(Shortcut shortcut);

  void useMap(KeyMap map);
  Key keyFor(Shortcut shortcut) const;
  // False when another program has the combination.
  bool grab(Key key) const;
  void ungrab(Key key) const;
  bool coreGrabIsTaken(Key key) const;
  std::vector<std::uint32_t> withLocks(std::uint32_t modifiers) const;
  void grabAll();
  void ungrabAll();
  void tellTap() const;

  std::unique_ptr<XConnection> x_;
  MainQueue& queue_;
  KeyboardService& keyboard_;
  const KeyboardLayout& layout_;
  std::uint8_t inputOpcode_ = 0;  // 0 when the server lacks XInput 2
  std::uint8_t xkbFirstEvent_ = 0;
  std::uint16_t masterKeyboard_ = 3;
  std::optional<KeyMap> map_;        // once it is needed
  std::uint32_t lockModifiers_ = 0;  // those that must not matter
  std::map<Shortcut, HotKey> hotKeys_;
  int suspensions_ = 0;
  LifeToken life_;
  XEventLoop loop_;
};

}  // namespace quorlo
