#pragma once

#include "base/life_token.h"
#include "platform/hot_key_center.h"
#include "platform/main_queue.h"
#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/keyboard/key_map.h"

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
    std::uint32_t modifiers = 0;
    std::uint32_t locks = 0;  // modifiers that must not matter
    bool operator==(const Key&) const = default;
  };
  struct HotKey {
    std::optional<Key> grabbed;
    std::function<void()> pressed;
  };

  X11HotKeyCenter(std::unique_ptr<XConnection> x, Options options, MainQueue& queue,
                  KeyboardService& keyboard, const KeyboardLayout& layout);

  void handleEvent(const xcb_generic_event_t& event);  // on the loop's thread
  void keyPressed(XKeycode keycode, std::uint32_t modifiers);
  void keyboardChanged();
  void unregister(Shortcut shortcut);

  void readMap();
  Key keyFor(Shortcut shortcut) const;
  // False when another program has the combination.
  bool grab(const Key& key) const;
  void ungrab(HotKey& hotKey) const;
  bool coreGrabIsTaken(const Key& key) const;
  void grabAgain();
  void tellTap() const;
  // A reply waited for may have brought events along, for which the loop would sleep on.
  void wake() const {
    loop_.post([] {});
  }

  std::unique_ptr<XConnection> x_;
  MainQueue& queue_;
  KeyboardService& keyboard_;
  const KeyboardLayout& layout_;
  std::uint8_t inputOpcode_ = 0;  // 0 when the server lacks XInput 2
  std::uint8_t xkbFirstEvent_ = 0;
  std::uint16_t masterKeyboard_ = 3;
  std::optional<KeyMap> map_;  // once it is needed
  std::uint32_t locks_ = 0;
  std::map<Shortcut, HotKey> hotKeys_;
  int suspensions_ = 0;
  LifeToken life_;
  mutable XEventLoop loop_;  // the last: its thread uses the others
};

}  // namespace quorlo
