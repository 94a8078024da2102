#pragma once

#include "virtual_desktop/input_device.h"
#include "virtual_desktop/key_layout.h"

#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace quorlo {

// A hand on one keyboard of the virtual desktop: a slave device of its own, as a real keyboard is. Keycodes
// are those of X (evdev + 8). Characters and names are looked up in the layout that holds at that moment.
class VirtualKeyboard {
 public:
  VirtualKeyboard(const std::filesystem::path& socket, std::function<const KeyLayout&()> layout);

  void press(uint8_t keycode);
  void release(uint8_t keycode);
  void tap(uint8_t keycode);
  // Named keys: "Return", "BackSpace", "Control_L", "ISO_Level3_Shift", ...; see KeyLayout::keyNamed. The
  // short names Shift, Ctrl, Alt, AltGr and Super stand for the usual keys.
  void press(const std::string& name);
  void release(const std::string& name);
  // "Return", or a chord such as "Ctrl+s" and "Ctrl+Shift+v".
  void tap(const std::string& chord);

  // The key that gives this name without modifiers.
  uint8_t keycodeOf(const std::string& name) const;

  // Types UTF-8 text as a person does, with Shift, AltGr and dead keys where the layout needs them.
  void type(std::string_view text, std::chrono::microseconds gap = {});
  // As a fast typist: each key goes down before the one before it is up. Needs text without modifiers.
  void typeRolling(std::string_view text, std::chrono::microseconds gap);

  void releaseAll();

 private:
  InputDevice device_;
  std::function<const KeyLayout&()> layout_;
  std::set<uint8_t> down_;
};

// The pointer of the virtual desktop.
class VirtualPointer {
 public:
  VirtualPointer(const std::filesystem::path& socket, int screenWidth, int screenHeight)
      : device_(socket), screenWidth_(screenWidth), screenHeight_(screenHeight) {}

  // In pixels of the screen.
  void moveTo(int x, int y);
  void click(int x, int y, int button = 1);

 private:
  InputDevice device_;
  int screenWidth_;
  int screenHeight_;
};

}  // namespace quorlo
