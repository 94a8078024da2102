#include "virtual_desktop/virtual_keyboard.h"

#include <map>
#include <stdexcept>
#include <thread>
#include <utility>

namespace quorlo {

namespace {

std::string fullName(const std::string& name) {
  static const std::map<std::string, std::string> kShort = {{"Shift", "Shift_L"},
                                                            {"Ctrl", "Control_L"},
                                                            {"Alt", "Alt_L"},
                                                            {"AltGr", "ISO_Level3_Shift"},
                                                            {"Super", "Super_L"}};
  const auto found = kShort.find(name);
  return found == kShort.end() ? name : found->second;
}

std::u32string decode(std::string_view utf8) {
  std::u32string result;
  for (size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    const size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (i + length > utf8.size()) throw std::runtime_error("Text to type is not UTF-8");
    char32_t character = length == 1 ? lead : lead & (0xFFU >> (length + 1));
    for (size_t k = 1; k < length; ++k) {
      character = (character << 6) | (static_cast<unsigned char>(utf8[i + k]) & 0x3FU);
    }
    result.push_back(character);
    i += length;
  }
  return result;
}

void pause(std::chrono::microseconds gap) {
  if (gap.count() > 0) std::this_thread::sleep_for(gap);  // the typist's speed, not a wait for anything
}

}  // namespace

VirtualKeyboard::VirtualKeyboard(const std::filesystem::path& socket,
                                 std::function<const KeyLayout&()> layout)
    : device_(socket), layout_(std::move(layout)) {}

void VirtualKeyboard::press(uint8_t keycode) {
  device_.key(keycode, true);
  down_.insert(keycode);
}

void VirtualKeyboard::release(uint8_t keycode) {
  device_.key(keycode, false);
  down_.erase(keycode);
}

void VirtualKeyboard::tap(uint8_t keycode) {
  press(keycode);
  release(keycode);
}

uint8_t VirtualKeyboard::keycodeOf(const std::string& name) const {
  return layout_().keyNamed(fullName(name)).keycode;
}

void VirtualKeyboard::press(const std::string& name) {
  press(keycodeOf(name));
}

void VirtualKeyboard::release(const std::string& name) {
  release(keycodeOf(name));
}

void VirtualKeyboard::tap(const std::string& chord) {
  const auto plus = chord.find('+', 1);
  if (plus == std::string::npos) {
    const auto stroke = layout_().keyNamed(fullName(chord));
    for (const auto modifier : stroke.modifiers) press(modifier);
    tap(stroke.keycode);
    for (const auto modifier : stroke.modifiers) release(modifier);
    return;
  }
  const auto modifier = chord.substr(0, plus);
  press(modifier);
  tap(chord.substr(plus + 1));
  release(modifier);
}

void VirtualKeyboard::type(std::string_view text, std::chrono::microseconds gap) {
  for (const auto character : decode(text)) {
    for (const auto& stroke : layout_().keysFor(character)) {
      for (const auto modifier : stroke.modifiers) press(modifier);
      tap(stroke.keycode);
      for (const auto modifier : stroke.modifiers) release(modifier);
    }
    pause(gap);
  }
}

void VirtualKeyboard::typeRolling(std::string_view text, std::chrono::microseconds gap) {
  uint8_t previous = 0;
  for (const auto character : decode(text)) {
    const auto strokes = layout_().keysFor(character);
    if (strokes.size() != 1 || !strokes.front().modifiers.empty()) {
      throw std::runtime_error("Rolling needs text without modifiers");
    }
    const auto keycode = strokes.front().keycode;
    if (keycode == previous) release(std::exchange(previous, uint8_t{0}));
    press(keycode);
    if (previous != 0) release(previous);
    previous = keycode;
    pause(gap);
  }
  if (previous != 0) release(previous);
}

void VirtualKeyboard::releaseAll() {
  while (!down_.empty()) release(*down_.begin());
}

void VirtualPointer::moveTo(int x, int y) {
  device_.moveTo((x + 0.5) / screenWidth_, (y + 0.5) / screenHeight_);
}

void VirtualPointer::click(int x, int y, int button) {
  moveTo(x, y);
  device_.button(button, true);
  device_.button(button, false);
}

}  // namespace quorlo
