#include "x11/desktop/x11_hot_key_center.h"

#include "base/localized.h"
#include "base/log.h"
#include "platform/keyboard_layout.h"
#include "text/utf.h"
#include "x11/connection/xcb_xkb.h"
#include "x11/keyboard/keyboard_service.h"

#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {

namespace {

constexpr std::uint32_t kKeyMask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;

Error withText(std::u16string message, const std::u16string& shortcut) {
  const auto place = message.find(u"%@");
  if (place != std::u16string::npos) message.replace(place, 2, shortcut);
  return Error{toUtf8(message)};
}

void selectMapChanges(const XConnection& x, std::uint16_t keyboard) {
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
  constexpr std::uint16_t kWhich = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  constexpr std::uint16_t kMap = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
  xcb_xkb_select_events_aux(x.get(), keyboard, kWhich, 0, 0, kMap, kMap, &details);
  x.flush();
}

// Caps Lock and Num Lock are modifiers to the server, and a grab is for exactly its modifiers.
std::vector<std::uint32_t> withLocks(std::uint32_t modifiers, std::uint32_t locks) {
  std::vector<std::uint32_t> result;
  for (std::uint32_t some = locks;; some = (some - 1) & locks) {
    result.push_back(modifiers | some);
    if (some == 0) return result;
  }
}

}  // namespace

Result<std::unique_ptr<X11HotKeyCenter>> X11HotKeyCenter::connect(Options options, MainQueue& queue,
                                                                  KeyboardService& keyboard,
                                                                  const KeyboardLayout& layout) {
  auto x = XConnection::open(options.display);
  if (!x) return x.error();
  return std::unique_ptr<X11HotKeyCenter>(
      new X11HotKeyCenter(std::move(x).value(), std::move(options), queue, keyboard, layout));
}

X11HotKeyCenter::X11HotKeyCenter(std::unique_ptr<XConnection> x, Options options, MainQueue& queue,
                                 KeyboardService& keyboard, const KeyboardLayout& layout)
    : x_(std::move(x)), queue_(queue), keyboard_(keyboard), layout_(layout), loop_(*x_, "hot keys") {
  if (const auto* input = x_->extension(xcb_input_id)) {
    const auto version =
        x_->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(x_->get(), 2, 2));
    if (version && version->major_version >= 2) inputOpcode_ = input->major_opcode;
  }
  xkb_x11_setup_xkb_extension(x_->get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                              XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &xkbFirstEvent_,
                              nullptr);
  if (const auto core = xkb_x11_get_core_keyboard_device_id(x_->get()); core > 0) {
    masterKeyboard_ = static_cast<std::uint16_t>(core);
    selectMapChanges(*x_, masterKeyboard_);
  }
  loop_.start([this](const xcb_generic_event_t& event) { handleEvent(event); },
              [lost = std::move(options.connectionLost)] {
                if (lost) lost();
              });
}

X11HotKeyCenter::~X11HotKeyCenter() {
  loop_.stop();
}

Result<Subscription> X11HotKeyCenter::registerHotKey(Shortcut shortcut, std::function<void()> pressed) {
  shortcut = normalized(shortcut);
  const auto failure = [&](std::u16string_view message) {
    return withText(localized(message), shortcutText(shortcut, layout_));
  };
  if (inputOpcode_ == 0) return withText(localized(u"The X server lacks the extension %@."), u"XInput 2");
  if (!map_) readMap();
  const auto key = keyFor(shortcut);
  if (key.keycode == 0) return failure(u"There is no key on this keyboard for %@.");
  const auto isTheSame = [&](const auto& other) { return keyFor(other.first) == key; };
  if (std::ranges::any_of(hotKeys_, isTheSame)) return failure(u"%@ is already in use in Quorlo.");
  if (!grab(key)) return failure(u"%@ is in use by another program.");
  HotKey hotKey{key, std::move(pressed)};
  if (suspensions_ > 0) ungrab(hotKey);
  hotKeys_.emplace(shortcut, std::move(hotKey));
  tellTap();
  return Subscription(life_.guard([this, shortcut] { unregister(shortcut); }));
}

void X11HotKeyCenter::unregister(Shortcut shortcut) {
  const auto found = hotKeys_.find(shortcut);
  ungrab(found->second);
  hotKeys_.erase(found);
  tellTap();
}

Subscription X11HotKeyCenter::suspend() {
  if (suspensions_++ == 0) {
    for (auto& [shortcut, hotKey] : hotKeys_) ungrab(hotKey);
    tellTap();
  }
  return Subscription(life_.guard([this] {
    if (--suspensions_ == 0) grabAgain();
  }));
}

void X11HotKeyCenter::handleEvent(const xcb_generic_event_t& event) {
  const auto type = event.response_type & 0x7FU;
  if (type == XCB_GE_GENERIC) {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != inputOpcode_ || generic.event_type != XCB_INPUT_KEY_PRESS) return;
    const auto& press = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    if ((press.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0) return;
    const auto keycode = static_cast<XKeycode>(press.detail);
    const auto modifiers = stateOfFlags(flagsOfState(press.mods.effective));
    queue_.run(life_.guard([this, keycode, modifiers] { keyPressed(keycode, modifiers); }));
  } else if (type == xkbFirstEvent_ && xkbFirstEvent_ != 0) {
    if (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY) {
      queue_.run(life_.guard([this] { keyboardChanged(); }));
    }
  }
}

// A grab lasts until its key is up, and other keys come along meanwhile.
void X11HotKeyCenter::keyPressed(XKeycode keycode, std::uint32_t modifiers) {
  for (const auto& [shortcut, hotKey] : hotKeys_) {
    const auto& key = hotKey.grabbed;
    if (!key || key->keycode != keycode || key->modifiers != modifiers) continue;
    const auto pressed = hotKey.pressed;  // may end the registration
    return pressed();
  }
}

// Told often, for instance whenever another keyboard is typed on; keys seldom move.
void X11HotKeyCenter::keyboardChanged() {
  if (!map_) return;
  readMap();
  if (suspensions_ > 0) return;
  for (auto& [shortcut, hotKey] : hotKeys_) {
    if (hotKey.grabbed && *hotKey.grabbed != keyFor(shortcut)) ungrab(hotKey);
  }
  grabAgain();
}

void X11HotKeyCenter::readMap() {
  if (auto map = KeyMap::ofServer(x_->get(), masterKeyboard_)) map_ = std::move(map);
  const auto reply = x_->reply(xcb_get_modifier_mapping_reply, xcb_get_modifier_mapping(x_->get()));
  wake();
  if (!map_ || !reply) return;
  locks_ = XCB_MOD_MASK_LOCK;
  const auto* keycodes = xcb_get_modifier_mapping_keycodes(reply.get());
  for (unsigned modifier = 3; modifier < 8; ++modifier) {  // Mod1 to Mod5
    for (unsigned i = 0; i < reply->keycodes_per_modifier; ++i) {
      const auto keysym = map_->keysym(keycodes[modifier * reply->keycodes_per_modifier + i], 0);
      if (keysym == XKB_KEY_Num_Lock || keysym == XKB_KEY_Scroll_Lock) locks_ |= 1U << modifier;
    }
  }
  locks_ &= ~stateOfFlags(kShortcutModifiers);
}

X11HotKeyCenter::Key X11HotKeyCenter::keyFor(Shortcut shortcut) const {
  if (!map_) return {};
  return {map_->keyForCode(shortcut.keyCode, 0), stateOfFlags(shortcut.modifierFlags), locks_};
}

bool X11HotKeyCenter::grab(const Key& key) const {
  // Servers keep the grabs of the old and of the new protocol apart: neither refuses the other.
  bool isTaken = coreGrabIsTaken(key);
  if (!isTaken) {
    const auto modifiers = withLocks(key.modifiers, key.locks);
    const auto reply =
        x_->reply(xcb_input_xi_passive_grab_device_reply,
                  xcb_input_xi_passive_grab_device(
                      x_->get(), XCB_CURRENT_TIME, x_->root(), XCB_CURSOR_NONE, key.keycode, masterKeyboard_,
                      static_cast<std::uint16_t>(modifiers.size()), 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                      XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                      XCB_INPUT_GRAB_OWNER_NO_OWNER, &kKeyMask, modifiers.data()));
    isTaken = !reply || reply->num_modifiers > 0;  // it lists those that were refused
    HotKey refused{key, nullptr};
    if (isTaken) ungrab(refused);
  }
  wake();
  return !isTaken;
}

void X11HotKeyCenter::ungrab(HotKey& hotKey) const {
  const auto key = std::exchange(hotKey.grabbed, std::nullopt);
  if (!key) return;
  const auto modifiers = withLocks(key->modifiers, key->locks);
  xcb_input_xi_passive_ungrab_device(x_->get(), x_->root(), key->keycode, masterKeyboard_,
                                     static_cast<std::uint16_t>(modifiers.size()),
                                     XCB_INPUT_GRAB_TYPE_KEYCODE, modifiers.data());
  // A key pressed from now on goes to the applications.
  x_->sync();
  wake();
}

bool X11HotKeyCenter::coreGrabIsTaken(const Key& key) const {
  const auto modifiers = static_cast<std::uint16_t>(key.modifiers);
  const auto request = xcb_grab_key_checked(x_->get(), 0, x_->root(), modifiers, key.keycode,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const XReply<xcb_generic_error_t> refused(xcb_request_check(x_->get(), request));
  if (!refused) xcb_ungrab_key(x_->get(), key.keycode, x_->root(), modifiers);
  return refused != nullptr;
}

void X11HotKeyCenter::grabAgain() {
  for (auto& [shortcut, hotKey] : hotKeys_) {
    if (hotKey.grabbed) continue;
    const auto key = keyFor(shortcut);
    if (key.keycode != 0 && grab(key)) {
      hotKey.grabbed = key;
    } else {
      logWarning("WARNING: #x11hK1; A hot key cannot be taken again: " +
                 toUtf8(shortcutText(shortcut, layout_)));
    }
  }
  tellTap();
}

void X11HotKeyCenter::tellTap() const {
  std::set<Shortcut> combinations;
  for (const auto& [shortcut, hotKey] : hotKeys_) {
    if (hotKey.grabbed) combinations.insert(shortcut);
  }
  keyboard_.setHotKeys(std::move(combinations));
}

}  // namespace quorlo
