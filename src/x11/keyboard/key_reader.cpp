#include "x11/keyboard/key_reader.h"

#include "text/utf.h"

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <array>

namespace quorlo {

namespace {

std::u16string textOf(std::uint32_t character) {
  if (character == 0) return {};
  if (character < 0x10000) return {static_cast<char16_t>(character)};
  return {static_cast<char16_t>(0xD7C0 + (character >> 10U)),
          static_cast<char16_t>(0xDC00 + (character & 0x3FFU))};
}

}  // namespace

KeyReader::KeyReader(KeyMap map, const std::string& locale)
    : map_(std::move(map)),
      state_(xkb_state_new(map_.get()), &xkb_state_unref),
      composeTable_(nullptr, &xkb_compose_table_unref),
      compose_(nullptr, &xkb_compose_state_unref) {
  xkb_context* const context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
  composeTable_.reset(
      xkb_compose_table_new_from_locale(context, locale.c_str(), XKB_COMPOSE_COMPILE_NO_FLAGS));
  xkb_context_unref(context);
  if (composeTable_) {
    compose_.reset(xkb_compose_state_new(composeTable_.get(), XKB_COMPOSE_STATE_NO_FLAGS));
  }
}

KeyReader::~KeyReader() = default;
KeyReader::KeyReader(KeyReader&&) noexcept = default;
KeyReader& KeyReader::operator=(KeyReader&&) noexcept = default;

std::uint32_t KeyReader::layout() const {
  return xkb_state_serialize_layout(state_.get(), XKB_STATE_LAYOUT_EFFECTIVE);
}

KeyReader::Reading KeyReader::readPress(XKeycode keycode) {
  Reading reading{read(keycode)};
  if (!compose_) return reading;
  const auto keysym = xkb_state_key_get_one_sym(state_.get(), keycode);
  if (xkb_compose_state_feed(compose_.get(), keysym) != XKB_COMPOSE_FEED_ACCEPTED) return reading;
  switch (xkb_compose_state_get_status(compose_.get())) {
    case XKB_COMPOSE_NOTHING:
      break;
    case XKB_COMPOSE_COMPOSING:
      reading.event.characters.clear();
      break;
    case XKB_COMPOSE_COMPOSED: {
      std::array<char, 64> utf8{};
      xkb_compose_state_get_utf8(compose_.get(), utf8.data(), utf8.size());
      reading.event.characters = toUtf16(utf8.data());
      reading.endsComposition = true;
      xkb_compose_state_reset(compose_.get());
      break;
    }
    case XKB_COMPOSE_CANCELLED:
      // Applications drop the key that fits no sequence together with what came before it.
      reading.event.characters.clear();
      xkb_compose_state_reset(compose_.get());
      break;
  }
  return reading;
}

KeyDownEvent KeyReader::readRepeat(XKeycode keycode) const {
  return read(keycode);
}

void KeyReader::press(XKeycode keycode) {
  if (down_.insert(keycode).second) xkb_state_update_key(state_.get(), keycode, XKB_KEY_DOWN);
}

void KeyReader::release(XKeycode keycode) {
  if (down_.erase(keycode) > 0) xkb_state_update_key(state_.get(), keycode, XKB_KEY_UP);
}

void KeyReader::setMap(KeyMap map) {
  map_ = std::move(map);
  state_.reset(xkb_state_new(map_.get()));
  for (const auto keycode : down_) xkb_state_update_key(state_.get(), keycode, XKB_KEY_DOWN);
  if (compose_) xkb_compose_state_reset(compose_.get());
}

void KeyReader::setLocks(const Locks& locks) {
  const bool isSame =
      locks.latchedModifiers == xkb_state_serialize_mods(state_.get(), XKB_STATE_MODS_LATCHED) &&
      locks.lockedModifiers == xkb_state_serialize_mods(state_.get(), XKB_STATE_MODS_LOCKED) &&
      static_cast<std::uint32_t>(locks.latchedGroup) ==
          xkb_state_serialize_layout(state_.get(), XKB_STATE_LAYOUT_LATCHED) &&
      locks.lockedGroup == xkb_state_serialize_layout(state_.get(), XKB_STATE_LAYOUT_LOCKED);
  if (isSame) return;
  xkb_state_update_mask(state_.get(), xkb_state_serialize_mods(state_.get(), XKB_STATE_MODS_DEPRESSED),
                        locks.latchedModifiers, locks.lockedModifiers,
                        xkb_state_serialize_layout(state_.get(), XKB_STATE_LAYOUT_DEPRESSED),
                        static_cast<std::uint32_t>(locks.latchedGroup), locks.lockedGroup);
}

bool KeyReader::hasLatches() const {
  return xkb_state_serialize_mods(state_.get(), XKB_STATE_MODS_LATCHED) != 0 ||
         xkb_state_serialize_layout(state_.get(), XKB_STATE_LAYOUT_LATCHED) != 0;
}

bool KeyReader::isActive(const char* modifier) const {
  return xkb_state_mod_name_is_active(state_.get(), modifier, XKB_STATE_MODS_EFFECTIVE) > 0;
}

ModifierFlags KeyReader::flags() const {
  ModifierFlags flags = 0;
  if (isActive(XKB_MOD_NAME_CAPS)) flags |= modifier::kCapsLock;
  if (isActive(XKB_MOD_NAME_SHIFT)) flags |= modifier::kShift;
  if (isActive(XKB_MOD_NAME_CTRL)) flags |= modifier::kCommand;
  if (isActive(XKB_MOD_NAME_LOGO)) flags |= modifier::kControl;
  if (isActive(XKB_MOD_NAME_ALT)) flags |= modifier::kOption;
  return flags;
}

KeyDownEvent KeyReader::read(XKeycode keycode) const {
  const auto keysym = xkb_state_key_get_one_sym(state_.get(), keycode);
  KeyDownEvent event;
  event.keyCode = keyCodeFor(keycode, keysym);
  event.flags = flags();
  if (const auto named = charactersOfNamedKey(keysym)) {
    event.characters = {*named};
    return event;
  }
  // Alt and Super choose commands. With Control the plain letter is reported: the flag says the rest.
  const bool isCommand = (event.flags & (modifier::kOption | modifier::kControl)) != 0;
  if (!isCommand || (event.flags & modifier::kCommand) != 0) {
    event.characters = textOf(xkb_keysym_to_utf32(keysym));
  }
  return event;
}

}  // namespace quorlo
